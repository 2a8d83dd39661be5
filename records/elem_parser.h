#pragma once
// Reading one element of a message. Unlike the record parsers, a fault here
// is not caught: it propagates so that the message stops at this element.

#include <json/json.h>

#include "records/drawing_payload.h"
#include "records/elem_records.h"

namespace records {

// Fills `elem` (whose context fields the caller has set) from one entry of
// message_elem_array, by elem_type. Throws on a value of the wrong type.
void ParseElem(const Json::Value& json, ElemStru& elem, const ReceiveOptions& options);

// A custom element is kept only for a drawing file or a shared-chat message;
// every other kind is kept.
bool IsKeptElement(const ElemStru& elem);

// Profile-change values; a fault is traced as UserProfileItem.
bool ParseUserProfileItem(const Json::Value& json, UserProfileItem& out);

}  // namespace records
