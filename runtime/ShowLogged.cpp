#include "runtime/ShowLogged.h"

namespace runtime {
namespace {

constexpr std::size_t mostShown = 2000;  // bytes; a higher box leaves the screen

}  // namespace

void showLogged(UserInterface& user, const Log& log, std::size_t place) {
  std::string text = log.since(place);
  text.erase(0, text.find_first_not_of("\r\n "));
  if (text.size() > mostShown) text = text.substr(0, text.rfind('\n', mostShown)) + "...";
  if (!text.empty()) user.message(text, Buttons::Ok, Icon::Exclamation);
}

}  // namespace runtime
