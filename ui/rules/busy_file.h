#pragma once
// "Is this file opened by another program?" There are no share modes on
// Linux, so a file counts as busy when any of these holds:
//  - it cannot be opened for reading and writing (missing, a folder, no
//    permission);
//  - it is read-only: no write permission bit is set (also for root, who may
//    write anyway);
//  - another open file holds a lock on it: flock(2), or a POSIX or
//    open-file-description record lock (fcntl);
//  - an office suite's lock file lies beside it: ".~lock.<name>#"
//    (LibreOffice, OpenOffice) or "~$<name>" (Microsoft Office and WPS, which
//    drop the first two letters of longer names: "~$cument.docx").

#include <string>

namespace ui::rules {

bool IsOpenElsewhere(const std::string& path);

}  // namespace ui::rules
