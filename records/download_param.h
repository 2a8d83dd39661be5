#pragma once
// The download-parameter text of one downloadable file of an element: what
// the SDK's element download takes, kept on the element and in the history.

#include <cstdint>
#include <string>

#include "platform/strings.h"
#include "records/elem_records.h"

namespace records {

// Styled JSON (UTF-8) of an object with msg_download_elem_param_flag, _type
// (the element kind), _id, _business_id and _url.
std::string BuildDownloadParam(int32_t flag, int32_t elem_type, const WString& id,
                               int64_t business_id, const WString& url);

// Builds the texts of every downloadable file of an image, sound, file or
// video element; other kinds have none.
void FillDownloadParams(ElemStru& elem);

}  // namespace records
