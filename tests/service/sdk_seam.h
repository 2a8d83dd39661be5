#pragma once
// A link seam over two SDK functions, for the binary that links it: by
// default each passes the call on to the embedded engine; a test can hold a
// sign-in's result back (to give it late, on its own thread) or have a send
// answered inside the call, as some SDKs do.

#include <cstdint>

namespace sdk_seam {

// The next accepted TIMLogin keeps its result until ReleaseLoginResult.
void HoldNextLoginResult();
// Gives the held result with `code` on the calling thread; false when none is held.
bool ReleaseLoginResult(int32_t code);

// Every TIMMsgSendNewMsg answers `code` inside the call (without sending).
void AnswerSendsInsideTheCall(int32_t code);
// Every TIMMsgSendNewMsg is accepted and never answered (a dropped result).
void DropSendResults();
// Back to passing every call on.
void Reset();

}  // namespace sdk_seam
