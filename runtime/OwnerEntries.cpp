#include "runtime/OwnerEntries.h"

namespace runtime {

const std::vector<OwnerEntry>& ownerEntries() {
  static const std::vector<OwnerEntry> entries = {{"usr1", 500}, {"usr2", 501}, {"usr3", 502},
                                                  {"usr4", 503}, {"usr5", 504}, {"usr6", 505},
                                                  {"usr7", 506}, {"usr8", 507}, {"root", 0}};
  return entries;
}

}  // namespace runtime
