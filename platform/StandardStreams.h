#pragma once

namespace platform {

/// A program may be started with standard input, output or error closed; the first file that it opens would
/// then be taken for them. Those lead to /dev/null afterwards. First of all in main().
void openStandardStreams();

}  // namespace platform
