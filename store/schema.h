#pragma once
// The Chat.db schema. The nine CREATE statements are run in this order, each
// on its own, errors ignored. conversationTbl's statement ends its column list
// with a comma and is always rejected: files in the field never had that
// table, and nothing reads or writes it, so the statement stays as it is.

#include <array>
#include <string_view>

namespace store {

inline constexpr std::array<std::string_view, 9> kCreateTableStatements = {
    "CREATE TABLE IF NOT EXISTS UserTbl("
    "id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "loginUserId VARCHAR (20) NOT NULL,"
    "email VARCHAR (50),"
    "phoneNumber VARCHAR (20),"
    "userName VARCHAR (100),"
    "isCADUser BOOLEAN DEFAULT false,"
    "isFriend BOOLEAN DEFAULT false"
    ");",

    "CREATE TABLE IF NOT EXISTS FriendTbl("
    "id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "loginUserId VARCHAR (20) NOT NULL,"
    "friendId VARCHAR (20) NOT NULL,"
    "email VARCHAR (50),"
    "phoneNumber VARCHAR (20),"
    "userAvatar TEXT,"
    "remarkName VARCHAR (100),"
    "nickName VARCHAR (100)"
    ");",

    "CREATE TABLE IF NOT EXISTS FriendRequireTbl("
    "id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "loginUserId VARCHAR (20) NOT NULL,"
    "nickName VARCHAR (100),"
    "userId VARCHAR (20),"
    "userAvatar TEXT,"
    "note VARCHAR (100),"
    "agree INTEGER,"
    "addTime BIGINT"
    ");",

    "CREATE TABLE IF NOT EXISTS GroupMemTbl("
    "id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "loginUserId VARCHAR (20) NOT NULL,"
    "groupid VARCHAR (20),"
    "thirdGroupId VARCHAR (50),"
    "memberUserId VARCHAR (20),"
    "nickName VARCHAR (100),"
    "userAvatar TEXT,"
    "groupRemarkName VARCHAR (100),"
    "cadPermissionRole INTEGER,"
    "groupRole INTEGER,"
    "joinTime BIGINT"
    ");",

    // The table name is spelled so in every existing file.
    "CREATE TABLE IF NOT EXISTS GtoupInfoTbl("
    "id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "loginUserId VARCHAR (20) NOT NULL,"
    "groupid VARCHAR (20) NOT NULL,"
    "thirdGroupId VARCHAR (20),"
    "groupName VARCHAR (100),"
    "groupAvatar TEXT,"
    "groupRole INTEGER,"
    "notice VARCHAR (100),"
    "memberCount INTEGER,"
    "groupRemarkName VARCHAR (100),"
    "groupSpace INTEGER"
    ");",

    "CREATE TABLE IF NOT EXISTS conversationTbl("
    "id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "loginUserId VARCHAR (100) NOT NULL,"
    "conversationId VARCHAR (20) NOT NULL,"
    "chatId VARCHAR (50),"
    "senderId VARCHAR (20),"
    "senderName VARCHAR (100),"
    "senderAvatar TEXT,"
    "lastMsgId VARCHAR (20),"
    "lastMsgContent TEXT,"
    "lastSendTime BIGINT,"
    "conversationType INT,"
    "conversationName VARCHAR (100),"
    "groupCardName VARCHAR (100),"
    "unreadCount INTEGER,"
    "isGroup BOOLEAN  DEFAULT false,"
    ");",

    "CREATE TABLE IF NOT EXISTS ElemTbl("
    "id INTEGER,"
    "kTIMElemType INT,"
    "kTIMMsgUniqueId BIGINT,"
    "info1 TEXT (100),"
    "info2 VARCHAR (100),"
    "info3 VARCHAR (100),"
    "info4 VARCHAR (100),"
    "info5 VARCHAR (100),"
    "info6 VARCHAR (100),"
    "info7 VARCHAR (100),"
    "info8 VARCHAR (100),"
    "info9 VARCHAR (100),"
    "info10 VARCHAR (100),"
    "info11 VARCHAR (100)"
    ");",

    "CREATE TABLE IF NOT EXISTS MessageTbl("
    "id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "loginUserId CHAR (10) DEFAULT '',"
    "kTIMMsgConvId CHAR (20) DEFAULT '',"
    "kTIMMsgConvType INT DEFAULT(0),"
    "kTIMMsgServerTime BIGINT DEFAULT(0),"
    "kTIMMsgIsFormSelf INT DEFAULT(0),"
    "kTIMMsgStatus INT DEFAULT(1),"
    "kTIMMsgUniqueId BIGINT UNIQUE NOT NULL DEFAULT (0),"
    "kTIMUserProfileNickName VARCHAR (100) DEFAULT '',"
    "kTIMUserProfileFaceUrl TEXT DEFAULT '',"
    "kTIMMsgPlatform INT DEFAULT(0),"
    "kTIMElemType INT DEFAULT(-1),"
    "info1 TEXT DEFAULT '',"
    "info2 TEXT DEFAULT '',"
    "info3 TEXT DEFAULT '',"
    "info4 TEXT DEFAULT '',"
    "info5 TEXT DEFAULT '',"
    "info6 TEXT DEFAULT '',"
    "info7 TEXT DEFAULT '',"
    "info8 TEXT DEFAULT '',"
    "info9 TEXT DEFAULT '',"
    "info10 TEXT DEFAULT '',"
    "info11 TEXT DEFAULT '',"
    "info12 TEXT DEFAULT ''"
    ");",

    "CREATE TABLE IF NOT EXISTS ConfigTbl("
    "DbVersion CHAR (50)"
    ");",
};

// Not part of the original schema: the message view's query (one
// conversation of one user, newest first) scans the whole table without it.
// IF NOT EXISTS lets older files simply gain it on their next open.
inline constexpr std::string_view kCreateConversationIndex =
    "CREATE INDEX IF NOT EXISTS MessageTbl_conv_user_time "
    "ON MessageTbl(kTIMMsgConvId, loginUserId, kTIMMsgServerTime);";

inline constexpr std::string_view kSchemaVersion = "1.0";
inline constexpr std::string_view kSelectVersion = "select DbVersion from ConfigTbl;";
inline constexpr std::string_view kInsertVersionHead = "insert into ConfigTbl(DbVersion) values(";

}  // namespace store
