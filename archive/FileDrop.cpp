#include "archive/FileDrop.h"

namespace archive {
namespace {

constexpr char headerSize = 20;  ///< bytes

}  // namespace

std::string fileDropBlock(std::string_view path) {
  std::string block(headerSize, '\0');
  block.front() = headerSize;  // the lowest byte of the first field
  block += path;
  block.append(2, '\0');
  return block;
}

}  // namespace archive
