#include "download/Explanation.h"

#include <cerrno>
#include <system_error>

#include "platform/HeldName.h"
#include "platform/InternetAddress.h"

namespace download {
namespace {

using platform::ConnectionError;

constexpr const char* waited = "20 seconds";  // as PollBudget counts
constexpr const char* sendAgain = " Then send it again.";
constexpr const char* nothingSent = " Nothing of it was sent.";

std::string placeOf(const Attempt& attempt) { return attempt.address + ", port " + attempt.port; }

std::string bytes(std::uint64_t count) { return std::to_string(count) + (count == 1 ? " byte" : " bytes"); }

std::string howFar(const Attempt& attempt) {
  return std::to_string(attempt.taken) + " of " + bytes(attempt.request.size);
}

std::string notAnAddress(const Attempt& attempt) {
  if (!platform::portOf(attempt.port))
    return "\"" + attempt.port + "\" is no port: that is a number from 1 to 65535.";
  return "\"" + attempt.address + "\" is no IP address: each box takes a number from 0 to 255.";
}

std::string unreachable(const Attempt& attempt) {
  // A name that was not found has the same error.
  if (!platform::ipv4Of(attempt.address))
    return "\"" + attempt.address +
           "\" is no IP address, and no name that is known here.\n"
           "Each box takes a number from 0 to 255.";
  return "No way leads there from this computer.\n"
         "Look whether the network cable is plugged in, whether the unit is on, and whether both are in the "
         "same network.";
}

std::string whyNotConnected(const Attempt& attempt, const ConnectionError& error) {
  switch (error.number) {
    case ECONNREFUSED:
      return "Something is there, but it takes no downloads at this port: it refused.\n"
             "Look whether the unit waits for a download, and whether this is its address.";
    case EPIPE:
    case ECONNRESET:
      return "Something is there, but it hung up at once.\n"
             "Look whether the unit is ready for a download, and whether this is its address.";
    case EHOSTUNREACH:
    case ENETUNREACH:
      return unreachable(attempt);
    case 0:
    case ETIMEDOUT:
      return std::string("Nothing answered within ") + waited +
             ".\nLook whether the unit is on and connected, whether this is its address, and whether a "
             "firewall stands between.";
    default:
      return "The system says: " + error.description + ".\nLook at the network of this computer.";
  }
}

std::string whyNoReply(NoReply how, std::string_view words) {
  switch (how) {
    case NoReply::HungUp:
      return std::string("It hung up without an answer.") + nothingSent +
             "\nLook whether the unit is ready for a download, and whether this is its address.";
    case NoReply::OtherWords:
      return "It answered, but not as a unit does: \"" + platform::holdName(words) + "\"." + nothingSent +
             "\nLook whether this is the address of the unit, and not of another machine.";
    case NoReply::Silence:
      break;
  }
  return std::string("There was no answer within 5 seconds.") + nothingSent +
         "\nLook whether the unit is busy with something else, and whether this is its address.";
}

}  // namespace

std::string explainNoConnection(const Attempt& attempt, const ConnectionError& error) {
  if (error.number == EINVAL) return "Nothing was tried: " + notAnAddress(attempt);
  return "Tried to connect to " + placeOf(attempt) + ".\n" + whyNotConnected(attempt, error);
}

std::string explainNoReply(const Attempt& attempt, NoReply how, std::string_view words) {
  return "Connected to " + placeOf(attempt) + ", and asked it to take the file.\n" + whyNoReply(how, words);
}

std::string explainRefusal(const Attempt& attempt, Reply reply) {
  const Request& request = attempt.request;
  const std::string asked = "Asked the unit at " + placeOf(attempt) + " to take " + request.remoteName;
  const std::string size = bytes(request.size);
  if (reply == Reply::NoSpace)
    return asked + ", " + size + "." + nothingSent +
           "\nMake room for that much on the unit, or send a smaller file.";
  return asked + ": " + size + ", permissions " + request.mode.text() + ", owner " + request.owner + "." +
         nothingSent + "\nLook whether the unit has this account, and try a shorter name of plain letters.";
}

std::string explainLoss(const Attempt& attempt, const ConnectionError& error) {
  const std::string unit = "The unit at " + placeOf(attempt);
  const std::string far = " after " + howFar(attempt) + ".\n";
  if (error.number == 0)
    return unit + " took nothing for " + waited + far + "Look whether it is still on and connected." +
           sendAgain;
  if (error.number == EPIPE || error.number == ECONNRESET || error.number == ENOTCONN)
    return unit + " hung up" + far + "Look whether it was switched off, or has no room left." + sendAgain;
  return "The connection to " + placeOf(attempt) + " broke" + far +
         "Look at the network cable and at the unit." + sendAgain;
}

std::string explainUnopened(const Attempt& attempt, const std::string& path, int systemError) {
  const std::string why =
      systemError == EINVAL ? "it is no regular file" : std::generic_category().message(systemError);
  return "Connected to " + placeOf(attempt) + ", but " + path + " cannot be read: " + why + "." +
         nothingSent + "\nLook whether it is still there, and whether you may read it.";
}

std::string explainFile(const Attempt& attempt, const std::string& path) {
  return "The unit at " + placeOf(attempt) + " had taken " + howFar(attempt) + " of " + path +
         ", which it does not keep.\nLook whether another program writes to this file, or whether its disk "
         "is gone." +
         sendAgain;
}

}  // namespace download
