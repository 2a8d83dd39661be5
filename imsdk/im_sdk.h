#ifndef IMSDK_IM_SDK_H_
#define IMSDK_IM_SDK_H_
/*
 * The IM SDK's C interface.
 *
 * Every parameter and every callback payload is UTF-8 JSON text; strings are
 * NUL-terminated and owned by the caller for the duration of the call (the
 * SDK copies what it keeps). Callback payload pointers are valid only while
 * the callback runs.
 *
 * Threads. Each function may be called from any thread. Every callback runs
 * on the SDK's single callback thread, never inside the call that caused it,
 * in the order in which the events happened. A function returns 0 when the
 * request was accepted (its result callback, if any, then follows exactly
 * once) and one of the TIM_ERR_... codes below when it was refused (then no
 * callback follows). Nothing throws; null and malformed input is refused.
 *
 * Life cycle. TIMInit starts the SDK (and its callback thread); TIMUninit
 * stops it. One account is signed in per process: TIMLogin while signed in
 * is refused. When TIMLogout returns, every callback queued before it,
 * including its own result, has been delivered and no event of the ended
 * session follows. When TIMUninit returns no callback runs any more (one
 * that was running when it was called has finished).
 *
 * Integers in JSON are numbers; 64-bit values (ids, times) are unsigned.
 * Times are seconds since 1970-01-01 UTC.
 */
#include <stdint.h>

#if defined(_WIN32)
#if defined(IMSDK_BUILDING)
#define IMSDK_API __declspec(dllexport)
#else
#define IMSDK_API __declspec(dllimport)
#endif
#else
#define IMSDK_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------------------
 * Result codes: returned by a refused call, or given to a result callback.
 * ------------------------------------------------------------------------- */
enum TIMResult {
  TIM_SUCC = 0,
  /* Refusals returned by the functions themselves. */
  TIM_ERR_FAILED = 1,                 /* generic failure (queued test failures) */
  TIM_ERR_NOT_INITIALIZED = 6013,     /* before TIMInit or after TIMUninit */
  TIM_ERR_NOT_LOGGED_IN = 6014,       /* the call needs a signed-in account */
  TIM_ERR_ALREADY_LOGGED_IN = 6015,   /* TIMLogin while signed in or signing in */
  TIM_ERR_ALREADY_INITIALIZED = 6016, /* TIMInit twice */
  TIM_ERR_INVALID_PARAM = 6017,       /* null pointer, empty id, string too long */
  TIM_ERR_INVALID_JSON = 6018,        /* JSON that does not parse or has wrong types */
  TIM_ERR_INVALID_CONV_TYPE = 6019,   /* conversation type other than 1 or 2 */
  TIM_ERR_CONV_NOT_FOUND = 6020,      /* no such conversation for this account */
  TIM_ERR_IN_CALLBACK = 6021,         /* TIMUninit called on the callback thread */
  /* Codes given to result callbacks. */
  TIM_ERR_NETWORK = 9519,             /* the network is down */
  TIM_ERR_USER_SIG_INVALID = 70001,   /* signature refused or expired */
  TIM_ERR_ACCOUNT_NOT_FOUND = 70107,  /* no such account */
  TIM_ERR_FILE = 6022,                /* a local file cannot be read or written */
  TIM_ERR_FILE_TOO_LARGE = 6023,      /* file above TIM_MAX_FILE_SIZE */
  TIM_ERR_FILE_NOT_FOUND = 6024,      /* no stored file for a download */
  TIM_ERR_NOT_FRIEND_VERIFY = 20010,  /* peer requires verification, not friends */
  TIM_ERR_FRIEND_REMOVED_YOU = 20011, /* the peer removed you from its friends */
  TIM_ERR_GROUP_NOT_FOUND = 10010,    /* no such group */
  TIM_ERR_NOT_GROUP_MEMBER = 10007,   /* the signed-in account is not a member */
  TIM_ERR_GROUP_PERMISSION = 10004,   /* only the owner may do this */
  TIM_ERR_GROUP_EXISTS = 10025,       /* group id already used */
  TIM_ERR_PENDENCY_NOT_FOUND = 30001, /* no friend request from that account */
  /* Codes inside friendship result entries (friend_result_code). */
  TIM_FRIEND_RESULT_PENDING = 30539,        /* request waits for the peer */
  TIM_FRIEND_RESULT_ALREADY_FRIEND = 30515, /* already a friend */
  TIM_FRIEND_RESULT_DENIED = 30516,         /* the peer refuses every request */
  TIM_FRIEND_RESULT_NOT_FRIEND = 31704      /* delete: was not a friend */
};

/* Longest id (account, group, conversation) accepted, in bytes. */
#define TIM_MAX_ID_LENGTH 128
/* Longest JSON parameter accepted, in bytes. */
#define TIM_MAX_JSON_LENGTH (1024 * 1024)
/* Largest file an image or file element may upload, in bytes. */
#define TIM_MAX_FILE_SIZE (100 * 1024 * 1024)

/* Conversation types (message_conv_type, conv_type). */
enum TIMConvType { kTIMConv_C2C = 1, kTIMConv_Group = 2 };

/* Element types (elem_type). */
enum TIMElemType {
  kTIMElem_Text = 0,
  kTIMElem_Image = 1,
  kTIMElem_Sound = 2,
  kTIMElem_Custom = 3,
  kTIMElem_File = 4,
  kTIMElem_GroupTips = 5,
  kTIMElem_Face = 6,
  kTIMElem_Location = 7,
  kTIMElem_GroupReport = 8,
  kTIMElem_Video = 9,
  kTIMElem_FriendChange = 10,
  kTIMElem_ProfileChange = 11
};

/* Message status (message_status). */
enum TIMMsgStatus { kTIMMsg_Sending = 1, kTIMMsg_SendSucc = 2, kTIMMsg_SendFail = 3 };

/* Network status (first argument of the network status callback). */
enum TIMNetworkStatus {
  kTIMConnected = 0,
  kTIMDisconnected = 1,
  kTIMConnecting = 2,
  kTIMConnectFailed = 3
};

/* Add permission of a profile (user_profile_add_permission). */
enum TIMAddPermission {
  kTIMAddPermission_Unknown = 0,
  kTIMAddPermission_AllowAny = 1,
  kTIMAddPermission_NeedConfirm = 2,
  kTIMAddPermission_DenyAny = 3
};

/* Friend request types (friend_add_pendency_info_type and the pendency query). */
enum TIMPendencyType {
  kTIMPendency_ComeIn = 0,  /* requests others sent to me */
  kTIMPendency_SendOut = 1, /* requests I sent */
  kTIMPendency_Both = 2     /* query only: both directions */
};

/* Group tip types (group_tips_elem_tip_type). */
enum TIMGroupTipType {
  kTIMGroupTip_Invite = 1,    /* members joined (user_array) */
  kTIMGroupTip_Quit = 2,      /* op_user left */
  kTIMGroupTip_Kick = 3,      /* members removed (user_array) */
  kTIMGroupTip_InfoChange = 6 /* group_change_info_array: flag 1 name, 5 owner */
};

/* Group report types (group_report_elem_report_type). */
enum TIMGroupReportType { kTIMGroupReport_Create = 1, kTIMGroupReport_Disband = 2 };

/* ---------------------------------------------------------------------------
 * Callback types. user_data is the pointer given with the registration or
 * the request, passed back unchanged.
 * ------------------------------------------------------------------------- */

/* Result of a request: code (TIM_SUCC or a code above), a short English
 * description (never null), the result JSON ("" when the request has none). */
typedef void (*TIMCommCallback)(int32_t code, const char* desc, const char* json_params,
                                void* user_data);
/* New messages: a JSON array of message objects (keys under TIMMsgSendNewMsg). */
typedef void (*TIMRecvNewMsgCallback)(const char* json_msg_array, void* user_data);
/* Read receipts: JSON array of {"msg_receipt_conv_id", "msg_receipt_conv_type",
 * "msg_receipt_time_stamp"}: the peer read everything up to that time. */
typedef void (*TIMMsgReadedReceiptCallback)(const char* json_receipt_array, void* user_data);
/* Revoked messages: JSON array of locators {"message_locator_conv_id",
 * "message_locator_conv_type", "message_locator_is_revoked", "message_locator_time",
 * "message_locator_seq", "message_locator_is_self", "message_locator_rand",
 * "message_locator_unique_id"}. */
typedef void (*TIMMsgRevokeCallback)(const char* json_locator_array, void* user_data);
/* Upload of element `index` of the message being sent: bytes done of total. */
typedef void (*TIMMsgElemUploadProgressCallback)(const char* json_msg, uint32_t index,
                                                 uint32_t cur_size, uint32_t total_size,
                                                 void* user_data);
/* A group event: one JSON object with the group tips keys (see TIMGroupTipType):
 * "group_tips_elem_tip_type", "group_tips_elem_op_user", "group_tips_elem_group_name",
 * "group_tips_elem_group_id", "group_tips_elem_time", "group_tips_elem_user_array",
 * "group_tips_elem_group_change_info_array" (entries "group_tips_group_change_info_flag",
 * "group_tips_group_change_info_value", "group_tips_group_change_info_key"),
 * "group_tips_elem_member_change_info_array", "group_tips_elem_op_user_info",
 * "group_tips_elem_changed_user_info_array", "group_tips_elem_op_group_memberinfo",
 * "group_tips_elem_changed_group_memberinfo_array", "group_tips_elem_member_num",
 * "group_tips_elem_platform". */
typedef void (*TIMGroupTipsEventCallback)(const char* json_group_tips, void* user_data);
/* Network status changed: status (TIMNetworkStatus), code and description. */
typedef void (*TIMNetworkStatusListenerCallback)(int32_t status, int32_t code, const char* desc,
                                                 void* user_data);
/* The account signed in elsewhere; this session has ended. */
typedef void (*TIMKickedOfflineCallback)(void* user_data);
/* The signature of the signed-in account expired; the session runs on, but
 * the same signature is refused at the next TIMLogin. */
typedef void (*TIMUserSigExpiredCallback)(void* user_data);
/* Friends added to / deleted from the signed-in account's list: JSON array of ids. */
typedef void (*TIMOnAddFriendCallback)(const char* json_identifier_array, void* user_data);
typedef void (*TIMOnDeleteFriendCallback)(const char* json_identifier_array, void* user_data);
/* A friend changed its profile: JSON array of {"friend_profile_update_identifier",
 * "friend_profile_update_item": {"friend_profile_item_nick_name", "..._face_url"}}. */
typedef void (*TIMUpdateFriendProfileCallback)(const char* json_update_array, void* user_data);
/* Friend requests arrived: JSON array of pendency entries (keys under
 * TIMFriendshipGetPendencyList). */
typedef void (*TIMFriendAddRequestCallback)(const char* json_pendency_array, void* user_data);
/* One SDK log line; level 1 debug .. 4 error. */
typedef void (*TIMLogCallback)(int32_t level, const char* log, void* user_data);

/* ---------------------------------------------------------------------------
 * Start-up, configuration, sign-in
 * ------------------------------------------------------------------------- */

/* Starts the SDK. sdk_app_id: the deployment's application id (any value
 * accepted). json_sdk_config: null or an object with optional
 * "sdk_config_log_file_path" and "sdk_config_config_file_path" (folders).
 * Returns 0, TIM_ERR_ALREADY_INITIALIZED, TIM_ERR_INVALID_JSON. */
IMSDK_API int TIMInit(uint64_t sdk_app_id, const char* json_sdk_config);

/* Stops the SDK: signs out, discards queued callbacks, waits for a running
 * callback, stops the callback thread. Returns 0, TIM_ERR_NOT_INITIALIZED,
 * TIM_ERR_IN_CALLBACK (called from a callback: refused, nothing changes). */
IMSDK_API int TIMUninit(void);

/* Sets options: an object with optional "set_config_log_level",
 * "set_config_callback_log_level" (numbers: log lines below this level are
 * not given to the log callback), "set_config_user_config" (object,
 * "user_config_is_read_receipt" boolean), "set_config_user_define_data"
 * (string). Callable before TIMInit's sign-in; needs TIMInit.
 * Result callback with json_params = the configuration now in force.
 * Returns 0, TIM_ERR_NOT_INITIALIZED, TIM_ERR_INVALID_JSON. */
IMSDK_API int TIMSetConfig(const char* json_config, TIMCommCallback cb, void* user_data);

/* Signs in user_id with user_sig. Result codes: 0, TIM_ERR_ACCOUNT_NOT_FOUND,
 * TIM_ERR_USER_SIG_INVALID, TIM_ERR_NETWORK. An account signed in is
 * reported online to the world; its pushed events start after the result.
 * Returns 0, TIM_ERR_NOT_INITIALIZED, TIM_ERR_INVALID_PARAM,
 * TIM_ERR_ALREADY_LOGGED_IN. */
IMSDK_API int TIMLogin(const char* user_id, const char* user_sig, TIMCommCallback cb,
                       void* user_data);

/* Signs out. Delivers every callback queued before it, then its own result
 * (code 0), before it returns; called from a callback it cannot wait, so it
 * discards the queued callbacks and its result follows the running callback.
 * Returns 0, TIM_ERR_NOT_INITIALIZED, TIM_ERR_NOT_LOGGED_IN. */
IMSDK_API int TIMLogout(TIMCommCallback cb, void* user_data);

/* ---------------------------------------------------------------------------
 * Event callbacks. Callable at any time, also before TIMInit; a null
 * callback unregisters. They stay registered across TIMUninit/TIMInit.
 * ------------------------------------------------------------------------- */
IMSDK_API void TIMAddRecvNewMsgCallback(TIMRecvNewMsgCallback cb, void* user_data);
/* Removes a new-message callback added with TIMAddRecvNewMsgCallback. */
IMSDK_API void TIMRemoveRecvNewMsgCallback(TIMRecvNewMsgCallback cb);
IMSDK_API void TIMSetMsgReadedReceiptCallback(TIMMsgReadedReceiptCallback cb, void* user_data);
IMSDK_API void TIMSetMsgRevokeCallback(TIMMsgRevokeCallback cb, void* user_data);
IMSDK_API void TIMSetMsgElemUploadProgressCallback(TIMMsgElemUploadProgressCallback cb,
                                                   void* user_data);
IMSDK_API void TIMSetGroupTipsEventCallback(TIMGroupTipsEventCallback cb, void* user_data);
IMSDK_API void TIMSetNetworkStatusListenerCallback(TIMNetworkStatusListenerCallback cb,
                                                   void* user_data);
IMSDK_API void TIMSetKickedOfflineCallback(TIMKickedOfflineCallback cb, void* user_data);
IMSDK_API void TIMSetUserSigExpiredCallback(TIMUserSigExpiredCallback cb, void* user_data);
IMSDK_API void TIMSetOnAddFriendCallback(TIMOnAddFriendCallback cb, void* user_data);
IMSDK_API void TIMSetOnDeleteFriendCallback(TIMOnDeleteFriendCallback cb, void* user_data);
IMSDK_API void TIMSetUpdateFriendProfileCallback(TIMUpdateFriendProfileCallback cb,
                                                 void* user_data);
IMSDK_API void TIMSetFriendAddRequestCallback(TIMFriendAddRequestCallback cb, void* user_data);
IMSDK_API void TIMSetLogCallback(TIMLogCallback cb, void* user_data);

/* ---------------------------------------------------------------------------
 * Conversations. conv_type: 1 one-to-one (conv_id = the peer's account),
 * 2 group (conv_id = the group id). All need a signed-in account and return
 * TIM_ERR_NOT_INITIALIZED, TIM_ERR_NOT_LOGGED_IN, TIM_ERR_INVALID_PARAM or
 * TIM_ERR_INVALID_CONV_TYPE when refused.
 *
 * Conversation object: "conv_id", "conv_type", "conv_owner" (the signed-in
 * account), "conv_unread_num", "conv_active_time", "conv_is_has_lastmsg",
 * "conv_last_msg" (message object, present when it has one),
 * "conv_is_has_draft" (always false).
 * ------------------------------------------------------------------------- */

/* Result: JSON array of conversation objects, most recently active first. */
IMSDK_API int TIMConvGetConvList(TIMCommCallback cb, void* user_data);

/* Creates the conversation (no error when it exists). Result: its object. */
IMSDK_API int TIMConvCreate(const char* conv_id, int32_t conv_type, TIMCommCallback cb,
                            void* user_data);

/* Deletes the conversation and its history for this account. Also returns
 * TIM_ERR_CONV_NOT_FOUND. Result: "" with code 0. */
IMSDK_API int TIMConvDelete(const char* conv_id, int32_t conv_type, TIMCommCallback cb,
                            void* user_data);

/* ---------------------------------------------------------------------------
 * Messages.
 *
 * Message object: "message_conv_id", "message_conv_type", "message_sender",
 * "message_client_time", "message_server_time", "message_is_from_self",
 * "message_platform" (0 here), "message_is_read", "message_status"
 * (TIMMsgStatus), "message_unique_id", "message_sender_profile"
 * ({"user_profile_identifier", "user_profile_nick_name",
 * "user_profile_face_url"}), "message_elem_array".
 *
 * Elements by "elem_type":
 *  0 text: "text_elem_content".
 *  1 image: "image_elem_orig_path" (sender's local file, uploaded on send),
 *    "image_elem_orig_id", "image_elem_thumb_id", "image_elem_large_id",
 *    "image_elem_orig_url", "image_elem_thumb_url", "image_elem_large_url",
 *    "image_elem_large_pic_width", "image_elem_large_pic_height" (0: not
 *    decoded), "image_elem_task_id". The three sizes are the same stored file.
 *  3 custom: "custom_elem_data" (any text).
 *  4 file: "file_elem_file_path" (sender's local file, uploaded on send),
 *    "file_elem_file_name", "file_elem_file_size", "file_elem_file_id",
 *    "file_elem_business_id", "file_elem_download_flag", "file_elem_url".
 *  5 group tips: the keys of TIMGroupTipsEventCallback's object.
 *  8 group report: "group_report_elem_report_type" (TIMGroupReportType),
 *    "group_report_elem_group_id", "group_report_elem_group_name",
 *    "group_report_elem_op_user", "group_report_elem_op_user_info".
 * ------------------------------------------------------------------------- */

/* Sends json_msg_param (a message object; only "message_elem_array" is read,
 * 1 to 16 elements of type 0, 1, 3 or 4) to the conversation. Files of image
 * and file elements are uploaded first, with upload progress callbacks.
 * Result: code 0 and the stored message object; or TIM_ERR_NETWORK,
 * TIM_ERR_NOT_FRIEND_VERIFY (the peer requires verification and you are not
 * its friend), TIM_ERR_FRIEND_REMOVED_YOU (you list the peer, it no longer
 * lists you), TIM_ERR_ACCOUNT_NOT_FOUND, TIM_ERR_GROUP_NOT_FOUND,
 * TIM_ERR_NOT_GROUP_MEMBER, TIM_ERR_FILE, TIM_ERR_FILE_TOO_LARGE, each with
 * the message object (status 3) as json_params. A failed message is not
 * kept. Refusals as for conversations, plus TIM_ERR_INVALID_JSON. */
IMSDK_API int TIMMsgSendNewMsg(const char* conv_id, int32_t conv_type, const char* json_msg_param,
                               TIMCommCallback cb, void* user_data);

/* History of one conversation. json_get_msg_param: "msg_getmsglist_param_last_msg"
 * (message object or {}: with a "message_unique_id" the page starts next to
 * that message, else at the newest), "msg_getmsglist_param_count" (1..1000,
 * default 20), "msg_getmsglist_param_is_forward" (false: older messages,
 * newest first; true: newer ones, oldest first), "msg_getmsglist_param_is_remble"
 * (accepted, no effect). Result: JSON array of message objects.
 * Also returns TIM_ERR_INVALID_JSON and TIM_ERR_CONV_NOT_FOUND. */
IMSDK_API int TIMMsgGetMsgList(const char* conv_id, int32_t conv_type,
                               const char* json_get_msg_param, TIMCommCallback cb, void* user_data);

/* Marks the conversation read up to json_msg_param (a message object with
 * "message_unique_id"), or entirely when it is null or "". Clears the unread
 * count accordingly; the sender is told by its read-receipt callback.
 * Also returns TIM_ERR_INVALID_JSON and TIM_ERR_CONV_NOT_FOUND. */
IMSDK_API int TIMMsgReportReaded(const char* conv_id, int32_t conv_type, const char* json_msg_param,
                                 TIMCommCallback cb, void* user_data);

/* Downloads a stored file to path (the file is replaced). json_download_elem_param:
 * "msg_download_elem_param_id" (an image/file id of a message element; or else
 * "msg_download_elem_param_url"), "msg_download_elem_param_type",
 * "msg_download_elem_param_flag", "msg_download_elem_param_business_id".
 * Result: {"msg_download_elem_result_current_size", "msg_download_elem_result_total_size"}
 * with code 0, or TIM_ERR_FILE_NOT_FOUND / TIM_ERR_FILE.
 * Returns 0, TIM_ERR_NOT_INITIALIZED, TIM_ERR_NOT_LOGGED_IN, TIM_ERR_INVALID_PARAM,
 * TIM_ERR_INVALID_JSON. */
IMSDK_API int TIMMsgDownloadElemToPath(const char* json_download_elem_param, const char* path,
                                       TIMCommCallback cb, void* user_data);

/* ---------------------------------------------------------------------------
 * Friendship and profiles. Refusals: TIM_ERR_NOT_INITIALIZED,
 * TIM_ERR_NOT_LOGGED_IN, TIM_ERR_INVALID_PARAM, TIM_ERR_INVALID_JSON.
 *
 * Profile object: "user_profile_identifier", "user_profile_nick_name",
 * "user_profile_gender", "user_profile_face_url", "user_profile_self_signature",
 * "user_profile_add_permission" (TIMAddPermission), "user_profile_location"
 * (string), "user_profile_language", "user_profile_birthday",
 * "user_profile_level", "user_profile_role", "user_profile_custom_string_array".
 *
 * Friend object: "friend_profile_identifier", "friend_profile_group_name_array",
 * "friend_profile_remark", "friend_profile_add_wording", "friend_profile_add_source",
 * "friend_profile_add_time", "friend_profile_user_profile" (profile object),
 * "friend_profile_custom_string_array".
 *
 * Friendship result entry: "friend_result_identifier", "friend_result_code",
 * "friend_result_desc".
 * ------------------------------------------------------------------------- */

/* Result: JSON array of friend objects. */
IMSDK_API int TIMFriendshipGetFriendProfileList(TIMCommCallback cb, void* user_data);

/* "friendship_add_friend_param_identifier", "friendship_add_friend_param_friend_type"
 * (1 both ways, 0 one way: accepted as both), "friendship_add_friend_param_remark",
 * "friendship_add_friend_param_add_source", "friendship_add_friend_param_add_wording".
 * A peer that allows anyone becomes a friend at once (both lists); one that
 * needs confirmation gets a friend request (friend_result_code
 * TIM_FRIEND_RESULT_PENDING); one that denies all gives
 * TIM_FRIEND_RESULT_DENIED. Result: one friendship result entry; callback
 * code TIM_ERR_ACCOUNT_NOT_FOUND for an unknown account. */
IMSDK_API int TIMFriendshipAddFriend(const char* json_add_friend_param, TIMCommCallback cb,
                                     void* user_data);

/* "friendship_delete_friend_param_identifier_array" (ids),
 * "friendship_delete_friend_param_friend_type" (0 removes them from my list
 * only, 1 from both lists). Result: array of friendship result entries. */
IMSDK_API int TIMFriendshipDeleteFriend(const char* json_delete_friend_param, TIMCommCallback cb,
                                        void* user_data);

/* "friendship_modify_friend_profile_param_identifier",
 * "friendship_modify_friend_profile_param_item": {"friend_profile_item_remark",
 * "friend_profile_item_group_name_array"} (each optional). Result: "" with
 * code 0, or TIM_FRIEND_RESULT_NOT_FRIEND as the code when not a friend. */
IMSDK_API int TIMFriendshipModifyFriendProfile(const char* json_modify_param, TIMCommCallback cb,
                                               void* user_data);

/* "friendship_get_pendency_list_param_type" (TIMPendencyType),
 * "friendship_get_pendency_list_param_start_seq" (0: from the newest; else
 * the current_seq of the previous page), "friendship_get_pendency_list_param_start_time"
 * (only requests at or after it), "friendship_get_pendency_list_param_limited_size"
 * (page size, default 20). Result: a page {"pendency_page_start_time",
 * "pendency_page_unread_num" (incoming requests newer than the last read
 * report), "pendency_page_current_seq" (where the next page starts, 0 when
 * this page is the last), "pendency_page_pendency_info_array"} whose entries
 * are {"friend_add_pendency_info_type", "friend_add_pendency_info_idenitifer",
 * "friend_add_pendency_info_nick_name", "friend_add_pendency_info_add_time",
 * "friend_add_pendency_info_add_source", "friend_add_pendency_info_add_wording"},
 * newest first. */
IMSDK_API int TIMFriendshipGetPendencyList(const char* json_get_pendency_list_param,
                                           TIMCommCallback cb, void* user_data);

/* Marks incoming friend requests up to time_stamp (seconds) as read. */
IMSDK_API int TIMFriendshipReportPendencyReaded(uint64_t time_stamp, TIMCommCallback cb,
                                                void* user_data);

/* Answers a friend request: "friend_respone_identifier" (the requester),
 * "friend_respone_action" (0 agree: the requester lists me; 1 agree and add:
 * both list each other; 2 reject), "friend_respone_remark",
 * "friend_respone_group_name". Result: one friendship result entry; callback
 * code TIM_ERR_PENDENCY_NOT_FOUND when that account has no request. */
IMSDK_API int TIMFriendshipHandleFriendAddRequest(const char* json_handle_param, TIMCommCallback cb,
                                                  void* user_data);

/* "friendship_getprofilelist_param_identifier_array" (ids),
 * "friendship_getprofilelist_param_force_update" (accepted). Result: array of
 * profile objects, unknown accounts left out. */
IMSDK_API int TIMProfileGetUserProfileList(const char* json_get_user_profile_list_param,
                                           TIMCommCallback cb, void* user_data);

/* Changes the signed-in account's profile: any of "user_profile_item_nick_name",
 * "user_profile_item_face_url", "user_profile_item_add_permission"
 * (TIMAddPermission 1..3), "user_profile_item_self_signature". Friends are told
 * by their profile-update callback. Result: the new profile object. */
IMSDK_API int TIMProfileModifySelfUserProfile(const char* json_modify_self_user_profile_param,
                                              TIMCommCallback cb, void* user_data);

/* ---------------------------------------------------------------------------
 * Groups. Refusals as for friendship. Every change posts a group tips
 * message into the group conversation of each member concerned and, for the
 * signed-in account, a group tips event.
 *
 * Group object: "group_base_info_group_id", "group_base_info_group_name",
 * "group_base_info_group_type" (0 public), "group_base_info_face_url",
 * "group_base_info_owner_identifier", "group_base_info_member_num",
 * "group_base_info_create_time".
 *
 * Member object: "group_member_info_identifier", "group_member_info_join_time",
 * "group_member_info_member_role" (1 member, 3 owner), "group_member_info_msg_flag",
 * "group_member_info_msg_seq", "group_member_info_shutup_time",
 * "group_member_info_name_card", "group_member_info_custom_info".
 * Callback codes: TIM_ERR_GROUP_NOT_FOUND, TIM_ERR_NOT_GROUP_MEMBER,
 * TIM_ERR_GROUP_PERMISSION, TIM_ERR_GROUP_EXISTS, TIM_ERR_NETWORK.
 * ------------------------------------------------------------------------- */

/* Result: JSON array of group objects the signed-in account belongs to. */
IMSDK_API int TIMGroupGetJoinedGroupList(TIMCommCallback cb, void* user_data);

/* json_group_id_array: array of group ids. Result: array of group objects
 * with "group_base_info_member_array" (member objects) added; unknown ids
 * left out. */
IMSDK_API int TIMGroupGetGroupInfoList(const char* json_group_id_array, TIMCommCallback cb,
                                       void* user_data);

/* "create_group_param_group_name", "create_group_param_group_id" (optional:
 * chosen by the SDK when absent), "create_group_param_group_type",
 * "create_group_param_face_url", "create_group_param_group_member_array"
 * (member objects; only the identifier is read). The signed-in account
 * becomes owner. Result: {"create_group_result_groupid"}. */
IMSDK_API int TIMGroupCreate(const char* json_group_create_param, TIMCommCallback cb,
                             void* user_data);

/* Disbands the group (owner only). Members get a group report message. */
IMSDK_API int TIMGroupDelete(const char* group_id, TIMCommCallback cb, void* user_data);

/* Leaves the group (the owner must transfer or disband first). */
IMSDK_API int TIMGroupQuit(const char* group_id, TIMCommCallback cb, void* user_data);

/* "group_invite_member_param_group_id", "group_invite_member_param_identifier_array".
 * Any member may invite. Result: array of {"group_invite_member_result_identifier",
 * "group_invite_member_result_result" (1 added, 0 failed, 2 already a member)}. */
IMSDK_API int TIMGroupInviteMember(const char* json_group_invite_param, TIMCommCallback cb,
                                   void* user_data);

/* "group_delete_member_param_group_id", "group_delete_member_param_identifier_array"
 * (owner only). Result: array of {"group_delete_member_result_identifier",
 * "group_delete_member_result_result" (1 removed, 0 not a member)}. */
IMSDK_API int TIMGroupDeleteMember(const char* json_group_delete_param, TIMCommCallback cb,
                                   void* user_data);

/* "group_modify_info_param_group_id" and any of "group_modify_info_param_group_name",
 * "group_modify_info_param_face_url", "group_modify_info_param_owner" (a member
 * who becomes owner; owner only). A tip of type 6 lists the changes (flag 1
 * name, 3 face, 5 owner). */
IMSDK_API int TIMGroupModifyGroupInfo(const char* json_group_modify_info_param, TIMCommCallback cb,
                                      void* user_data);

/* "group_get_members_info_list_param_group_id". Result:
 * {"group_get_member_info_list_result_info_array": member objects}. */
IMSDK_API int TIMGroupGetMemberInfoList(const char* json_group_getmeminfos_param,
                                        TIMCommCallback cb, void* user_data);

#ifdef __cplusplus
}
#endif

#endif /* IMSDK_IM_SDK_H_ */
