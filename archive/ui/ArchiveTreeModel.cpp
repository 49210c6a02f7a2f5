#include "archive/ui/ArchiveTreeModel.h"

#include <QColor>
#include <QGuiApplication>
#include <QPalette>
#include <utility>

#include "platform/desktop/ImageList.h"
#include "platform/desktop/ReadableColour.h"
#include "platform/desktop/Text.h"
#include "runtime/ImageKeys.h"

namespace archive {

void ArchiveTreeModel::setTree(ArchiveTree tree) {
  beginResetModel();
  tree_ = std::move(tree);
  hint_.clear();
  endResetModel();
}

ArchiveTree ArchiveTreeModel::takeTree() {
  beginResetModel();
  ArchiveTree tree = std::exchange(tree_, {});
  endResetModel();
  return tree;
}

void ArchiveTreeModel::showHint(const QString& text) {
  beginResetModel();
  tree_ = {};
  hint_ = text;
  endResetModel();
}

NodeId ArchiveTreeModel::node(const QModelIndex& index) { return static_cast<NodeId>(index.internalId()); }

QModelIndex ArchiveTreeModel::indexOf(NodeId node) const {
  return node == 0 ? QModelIndex() : createIndex(static_cast<int>(tree_.row(node)), 0, node);
}

QModelIndex ArchiveTreeModel::index(int row, int column, const QModelIndex& parent) const {
  if (!hasIndex(row, column, parent)) return {};
  if (!hint_.isEmpty()) return createIndex(row, column, quintptr{0});
  return createIndex(row, column, tree_.child(node(parent), static_cast<std::size_t>(row)));
}

QModelIndex ArchiveTreeModel::parent(const QModelIndex& child) const {
  return node(child) == 0 ? QModelIndex() : indexOf(tree_.parent(node(child)));
}

int ArchiveTreeModel::rowCount(const QModelIndex& parent) const {
  if (!hint_.isEmpty()) return parent.isValid() ? 0 : 1;
  return static_cast<int>(tree_.childCount(parent.isValid() ? node(parent) : 0));
}

int ArchiveTreeModel::columnCount(const QModelIndex&) const { return 1; }

QVariant ArchiveTreeModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (node(index) != 0) return memberData(node(index), role);
  return role == Qt::DisplayRole ? hint_ : QVariant();
}

QVariant ArchiveTreeModel::memberData(NodeId node, int role) const {
  switch (role) {
    case Qt::DisplayRole:
      return platform::desktop::toShown(tree_.text(node));
    case Qt::DecorationRole:
      return platform::desktop::imageIcon(tree_.image(node));
    case Qt::CheckStateRole:
      return tree_.checked(node) ? Qt::Checked : Qt::Unchecked;
    case Qt::ForegroundRole:
      return tree_.partlySelected(node) ? platform::desktop::readableColour(
                                              Qt::red, QGuiApplication::palette().color(QPalette::Base))
                                        : QVariant();
    case Qt::FontRole:
      return tree_.partlySelected(node) ? QVariant(platform::desktop::slantedFont()) : QVariant();
    case Qt::AccessibleDescriptionRole:
      return tickText(node);
    default:
      return {};
  }
}

/// A colour is no text, and an unticked box has no state that is read out.
QString ArchiveTreeModel::tickText(NodeId node) const {
  if (tree_.partlySelected(node)) return QStringLiteral("partly ticked");
  return tree_.checked(node) ? QStringLiteral("ticked") : QStringLiteral("not ticked");
}

bool ArchiveTreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || node(index) == 0) return false;
  tree_.setChecked(node(index), value.toInt() == Qt::Checked);
  for (QModelIndex at = index; at.isValid(); at = at.parent()) emit dataChanged(at, at);
  changedBelow(node(index));
  return true;
}

Qt::ItemFlags ArchiveTreeModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags usual = QAbstractItemModel::flags(index);
  return node(index) == 0 ? usual : usual | Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled;
}

void ArchiveTreeModel::childrenChanged(NodeId parent) {
  const std::size_t count = tree_.childCount(parent);
  if (count > 0) emit dataChanged(indexOf(tree_.child(parent, 0)), indexOf(tree_.child(parent, count - 1)));
}

void ArchiveTreeModel::changedBelow(NodeId node) {
  std::vector<NodeId> open = {node};
  while (!open.empty()) {
    const NodeId at = open.back();
    open.pop_back();
    childrenChanged(at);
    for (std::size_t i = 0; i < tree_.childCount(at); ++i)
      if (tree_.childCount(tree_.child(at, i)) > 0) open.push_back(tree_.child(at, i));
  }
}

void ArchiveTreeModel::setAllChecked(bool state) {
  tree_.setAllChecked(state);
  changedBelow(0);
}

void ArchiveTreeModel::setFolderImage(const QModelIndex& index, const char* key) {
  if (node(index) == 0 || tree_.childCount(node(index)) == 0) return;
  tree_.setImage(node(index), runtime::ImageIndexForKey(key));
  emit dataChanged(index, index, {Qt::DecorationRole});
}

}  // namespace archive
