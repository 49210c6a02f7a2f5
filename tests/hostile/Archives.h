#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace tests {

struct Member {
  /// `kind` as in a tar header: '0' file, '1' hard link, '2' symbolic link, '5' folder.
  Member(const char* path, char kind = '0', std::string target = {})
      : name(path), type(kind), link(std::move(target)) {}
  std::string name;
  char type;
  std::string link;
  std::string content = type == '0' ? name : "";
  std::vector<std::pair<std::size_t, std::string>> fields = {};  ///< of the header, what is special, by place
};
inline Member folder(const char* name) { return {name, '5'}; }
inline Member symlink(const char* name, const std::string& target) { return {name, '2', target}; }
inline Member hardLink(const char* name, const std::string& target) { return {name, '1', target}; }

inline Member holding(Member member, const std::string& content) {
  member.content = content;
  return member;
}
inline Member with(Member member, std::size_t place, const std::string& value) {
  member.fields.emplace_back(place, value);
  return member;
}
/// What stands in front of a member to name it: a PAX header, or the long name of GNU tar.
inline Member paxPath(const std::string& path) {
  std::string record = " path=" + path + '\n';
  std::size_t size = record.size() + 1;
  while (std::to_string(size).size() + record.size() != size) ++size;
  return holding({"pax", 'x'}, std::to_string(size) + record);
}
inline Member gnuName(const std::string& path) { return holding({"././@LongLink", 'L'}, path + '\0'); }

/// A tar by hand, with members that no tool would write. A file holds its own name.
inline std::string tarOf(const std::vector<Member>& members) {
  std::string bytes;
  for (const Member& member : members) {
    std::string header(512, '\0');
    const std::string& content = member.content;
    std::array<char, 13> size{};
    std::snprintf(size.data(), size.size(), "%011zo", content.size());
    header.replace(0, member.name.size(), member.name);
    header.replace(100, 7, member.type == '5' ? "0000755" : "0000644");
    header.replace(108, 7, "0000000").replace(116, 7, "0000000");
    header.replace(124, 11, size.data(), 11).replace(136, 11, "10000000000");
    header[156] = member.type;
    header.replace(157, member.link.size(), member.link).replace(257, 8, std::string("ustar\00000", 8));
    for (const auto& [place, value] : member.fields) header.replace(place, value.size(), value);
    header.replace(148, 8, 8, ' ');
    unsigned sum = 0;
    for (const char c : header) sum += static_cast<unsigned char>(c);
    std::snprintf(size.data(), size.size(), "%06o", sum);
    header.replace(148, 6, size.data(), 6)[154] = '\0';
    bytes += header + content + std::string((512 - content.size() % 512) % 512, '\0');
  }
  return bytes + std::string(1024, '\0');
}

/// An ar archive of headers as they are: name, content.
inline std::string arOf(const std::vector<std::pair<std::string, std::string>>& members) {
  std::string bytes = "!<arch>\n";
  for (const auto& [name, content] : members) {
    std::string header(60, ' ');
    header.replace(0, name.size(), name).replace(16, 1, "0").replace(28, 1, "0").replace(34, 1, "0");
    header.replace(40, 6, "100644");
    const std::string size = std::to_string(content.size());
    header.replace(48, size.size(), size).replace(58, 2, "`\n");
    bytes += header + content + (content.size() % 2 == 0 ? "" : "\n");
  }
  return bytes;
}

}  // namespace tests
