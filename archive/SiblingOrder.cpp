#include "archive/SiblingOrder.h"

#include <algorithm>
#include <clocale>
#include <cwctype>
#include <utility>

#include "platform/Ascii.h"

namespace archive {
namespace {

/// Lower-cases what lies outside ASCII too, whatever locale the program runs in.
std::uint32_t lowerCode(std::uint32_t code) {
  static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
  if (unicode == locale_t()) return code;
  return static_cast<std::uint32_t>(towlower_l(static_cast<wint_t>(code), unicode));
}

/// The next character of a text that is valid UTF-8, lower-cased.
std::uint32_t takeLower(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) {
    text.remove_prefix(1);
    return static_cast<unsigned char>(platform::lowerAscii(static_cast<char>(lead)));
  }
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  std::uint32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length && i < text.size(); ++i)
    code = (code << 6) | (static_cast<unsigned char>(text[i]) & 0x3FU);
  text.remove_prefix(length < text.size() ? length : text.size());
  return lowerCode(code);
}

/// Equal bytes need no lower-casing. Stops at the beginning of a character.
void skipCommonStart(std::string_view& a, std::string_view& b) {
  const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  auto same = static_cast<std::size_t>(differ.first - a.begin());
  const auto inside = [&same](std::string_view text) {
    return same < text.size() && (static_cast<unsigned char>(text[same]) & 0xC0U) == 0x80U;
  };
  while (same > 0 && (inside(a) || inside(b))) --same;
  a.remove_prefix(same);
  b.remove_prefix(same);
}

/// The next eight characters, lower-cased, so that numbers compare as the texts do. What lies outside ASCII
/// is greater than all of it and ends them; `text` is empty then.
std::uint64_t takeStart(std::string_view& text) {
  std::uint64_t start = 0;
  for (int shift = 56; shift >= 0 && !text.empty(); shift -= 8) {
    const std::uint32_t code = takeLower(text);
    start |= std::uint64_t{std::min(code, 0xFFU)} << shift;
    if (code >= 0x80) text = {};
  }
  return start;
}

/// Keeps the lists balanced: as good as random, and the same on every run.
std::uint32_t priority(NodeId node) {
  std::uint32_t x = node * 0x9E3779B9U;
  x = (x ^ (x >> 16)) * 0x85EBCA6BU;
  x = (x ^ (x >> 13)) * 0xC2B2AE35U;
  return x ^ (x >> 16);
}

}  // namespace

bool sortsBefore(std::string_view a, std::string_view b) {
  skipCommonStart(a, b);
  while (!a.empty() && !b.empty()) {
    const std::uint32_t left = takeLower(a);
    const std::uint32_t right = takeLower(b);
    if (left != right) return left < right;
  }
  return a.empty() && !b.empty();
}

bool SiblingOrder::greater(NodeId node, std::string_view text) const {
  return node != 0 && sortsBefore(text, nodes_[node].text);
}

/// Most pairs are told apart by their beginnings, which lie close together in memory.
bool SiblingOrder::greater(NodeId node, const Newcomer& newcomer) const {
  if (node == 0) return false;
  const Start& own = starts_[node];
  return own != newcomer.start ? newcomer.start < own : greater(node, newcomer.text);
}

SiblingOrder::Start SiblingOrder::startOf(std::string_view text) {
  const std::uint64_t first = takeStart(text);
  return {first, takeStart(text)};
}

bool SiblingOrder::goesBefore(const Newcomer& newcomer, NodeId sibling) const {
  const bool isFile = nodes_[sibling].childCount == 0;
  if (newcomer.asFolder) return isFile || greater(sibling, newcomer);
  return isFile && greater(sibling, newcomer);
}

bool SiblingOrder::goesBeforeSome(const Newcomer& newcomer, NodeId subtree) const {
  if (subtree == 0) return false;
  const Link& link = links_[subtree];
  if (newcomer.asFolder) return link.greatestFile != 0 || greater(link.greatest, newcomer);
  return greater(link.greatestFile, newcomer);
}

NodeId SiblingOrder::firstBehind(const Newcomer& newcomer, NodeId root) const {
  NodeId at = root;
  if (!goesBeforeSome(newcomer, at)) return 0;
  while (true) {
    if (goesBeforeSome(newcomer, links_[at].left))
      at = links_[at].left;
    else if (goesBefore(newcomer, at))
      return at;
    else
      at = links_[at].right;
  }
}

NodeId SiblingOrder::greaterOf(NodeId a, NodeId b) const {
  if (a == 0 || b == 0) return a == 0 ? b : a;
  return greater(b, {nodes_[a].text, starts_[a], false}) ? b : a;
}

void SiblingOrder::insert(NodeId parent, NodeId node, bool asFolder) {
  if (links_.size() <= node) {
    links_.resize(node + 1);
    starts_.resize(node + 1);
  }
  if (parent != 0 && links_[parent].root == 0) settle(nodes_[parent].parent);  // it stops being a file there
  if (asFolder) settle(parent);
  if (links_[parent].settled) return insertSettled(parent, node, asFolder);
  links_[node].right = std::exchange(links_[parent].root, node);
}

/// In the order in which they came.
std::vector<NodeId> SiblingOrder::waiting(NodeId parent) const {
  std::vector<NodeId> files;
  for (NodeId file = links_[parent].root; file != 0; file = links_[file].right) files.push_back(file);
  std::reverse(files.begin(), files.end());
  return files;
}

void SiblingOrder::settle(NodeId parent) {
  if (links_[parent].settled) return;
  const std::vector<NodeId> files = waiting(parent);
  links_[parent].settled = true;
  links_[parent].root = 0;
  for (const NodeId file : files) {
    links_[file].right = 0;
    insertSettled(parent, file, false);
  }
}

void SiblingOrder::insertSettled(NodeId parent, NodeId node, bool asFolder) {
  const Newcomer newcomer{nodes_[node].text, starts_[node] = startOf(nodes_[node].text), asFolder};
  Link& own = links_[node];
  own.greatest = own.greatestFile = node;
  NodeId& root = links_[parent].root;
  attach(root, node, firstBehind(newcomer, root));
  announce(node, newcomer);
  while (own.up != 0 && priority(own.up) < priority(node)) rotateUp(node, root);
}

/// Hangs the node in right before `next`, or at the end when that is 0.
void SiblingOrder::attach(NodeId& root, NodeId node, NodeId next) {
  if (root == 0) {
    root = node;
    return;
  }
  NodeId above = next == 0 ? root : next;
  const bool asLeft = next != 0 && links_[next].left == 0;
  if (!asLeft) {
    if (next != 0) above = links_[next].left;
    while (links_[above].right != 0) above = links_[above].right;
  }
  (asLeft ? links_[above].left : links_[above].right) = node;
  links_[node].up = above;
}

/// Tells all above a new leaf of it.
void SiblingOrder::announce(NodeId node, const Newcomer& newcomer) {
  bool greatest = true;
  bool greatestFile = true;
  for (NodeId at = links_[node].up; at != 0; at = links_[at].up) {
    Link& link = links_[at];
    ++link.size;
    greatest = greatest && !greater(link.greatest, newcomer);
    if (greatest) link.greatest = node;
    greatestFile = greatestFile && !greater(link.greatestFile, newcomer);
    if (greatestFile) link.greatestFile = node;
  }
}

void SiblingOrder::refresh(NodeId node) {
  Link& link = links_[node];
  const Link& left = links_[link.left];
  const Link& right = links_[link.right];
  link.size = 1 + (link.left == 0 ? 0 : left.size) + (link.right == 0 ? 0 : right.size);
  link.greatest = greaterOf(greaterOf(node, left.greatest), right.greatest);
  const NodeId self = nodes_[node].childCount == 0 ? node : 0;
  link.greatestFile = greaterOf(greaterOf(self, left.greatestFile), right.greatestFile);
}

void SiblingOrder::rotateUp(NodeId node, NodeId& root) {
  const NodeId above = links_[node].up;
  const NodeId top = links_[above].up;
  const bool fromLeft = links_[above].left == node;
  NodeId& inner = fromLeft ? links_[node].right : links_[node].left;
  (fromLeft ? links_[above].left : links_[above].right) = inner;
  if (inner != 0) links_[inner].up = above;
  inner = above;
  links_[above].up = node;
  links_[node].up = top;
  if (top == 0)
    root = node;
  else
    (links_[top].left == above ? links_[top].left : links_[top].right) = node;
  refresh(above);
  refresh(node);
}

void SiblingOrder::gotFirstChild(NodeId node) {
  for (NodeId at = node; at != 0 && links_[at].greatestFile == node; at = links_[at].up) refresh(at);
}

std::uint32_t SiblingOrder::rank(NodeId node) const {
  const auto sizeOf = [this](NodeId id) { return id == 0 ? 0 : links_[id].size; };
  std::uint32_t before = sizeOf(links_[node].left);
  for (NodeId at = node; links_[at].up != 0; at = links_[at].up) {
    const NodeId above = links_[at].up;
    if (links_[above].right == at) before += 1 + sizeOf(links_[above].left);
  }
  return before;
}

bool SiblingOrder::standsBefore(NodeId a, NodeId b) const {
  return links_[nodes_[a].parent].settled ? rank(a) < rank(b) : a < b;
}

/// What the texts of all begin with.
std::size_t SiblingOrder::commonStart(const std::vector<NodeId>& files) const {
  std::string_view common = files.empty() ? std::string_view() : nodes_[files.front()].text;
  for (const NodeId file : files) {
    std::string_view rest = common;
    std::string_view text = nodes_[file].text;
    skipCommonStart(rest, text);
    common.remove_suffix(rest.size());
  }
  return common.size();
}

/// Of equal ones the newer stands behind. Nearly all pairs are told apart by what follows the common start.
void SiblingOrder::appendSorted(const std::vector<NodeId>& files, std::vector<NodeId>& out) const {
  const std::size_t common = commonStart(files);
  std::vector<std::pair<Start, NodeId>> keyed;
  keyed.reserve(files.size());
  for (const NodeId file : files)
    keyed.emplace_back(startOf(std::string_view(nodes_[file].text).substr(common)), file);
  std::stable_sort(keyed.begin(), keyed.end(), [this](const auto& a, const auto& b) {
    return a.first != b.first ? a.first < b.first : sortsBefore(nodes_[a.second].text, nodes_[b.second].text);
  });
  for (const auto& one : keyed) out.push_back(one.second);
}

void SiblingOrder::appendChildren(NodeId parent, std::vector<NodeId>& out) const {
  if (parent < links_.size() && !links_[parent].settled) return appendSorted(waiting(parent), out);
  std::vector<NodeId> open;
  NodeId at = parent < links_.size() ? links_[parent].root : 0;
  while (at != 0 || !open.empty()) {
    for (; at != 0; at = links_[at].left) open.push_back(at);
    at = open.back();
    open.pop_back();
    out.push_back(at);
    at = links_[at].right;
  }
}

}  // namespace archive
