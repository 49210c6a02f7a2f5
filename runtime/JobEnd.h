#pragma once

namespace runtime {

/// How a job ended; the user has been told. Every job returns a value that holds it.
enum class JobEnd {
  Done,
  Remarks,  ///< done, but not with all that was asked for; the log says what is missing
  Refused,  ///< nothing was begun: a check or the user said no
  Failed,
  Stopped,  ///< asked to stop: no step began after that
};

}  // namespace runtime
