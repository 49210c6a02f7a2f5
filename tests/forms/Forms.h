#pragma once

#include <QtTest>
#include <QtWidgets>

#include "platform/desktop/FilePickers.h"
#include "runtime/FilePane.h"
#include "tests/World.h"

namespace tests {

/// Acts on the next modal window, once it is there; one of another kind is closed and is a failure.
template <typename Window>
void onNextModal(std::function<void(Window&)> act, int tries = 400) {
  QTimer::singleShot(5, [act = std::move(act), tries] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr && tries > 0) return onNextModal<Window>(act, tries - 1);
    ASSERT_NE(modal, nullptr);
    if (auto* window = qobject_cast<Window*>(modal)) return act(*window);
    ADD_FAILURE() << "another window: " << modal->metaObject()->className();
    modal->close();
  });
}

template <typename Control = QWidget>
Control& the(const QObject& form, const char* name) {
  auto* const control = form.findChild<Control*>(name);
  if (control == nullptr) throw std::runtime_error(name);
  return *control;
}
inline void press(const QObject& form, const char* name) { the<QAbstractButton>(form, name).click(); }

inline void leftClick(QWidget* widget, QPoint at = {}, Qt::KeyboardModifiers keys = {}) {
  QTest::mouseClick(widget, Qt::LeftButton, keys, at);
}
inline void turnWheel(QWidget* widget, int notches) {
  const QPointF middle = widget->rect().center();
  QWheelEvent event(middle, widget->mapToGlobal(middle), {}, {0, -120 * notches}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(widget, &event);
}

/// Each visible text is whole, and every control that takes the focus has a name for assistive tools.
inline void checkTexts(const QWidget& form) {
  for (const QLabel* label : form.findChildren<QLabel*>()) {
    if (!label->isVisible()) continue;
    EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
  }
  for (QWidget* widget : form.findChildren<QWidget*>())
    if (widget->isVisible() && widget->focusPolicy() != Qt::NoFocus) {
      const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
      EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
    }
}

/// Answers questions in turn, then all alike, and keeps the last one.
class Pickers : public platform::desktop::FilePickers {
 public:
  std::string openFile(const platform::desktop::FileRequest& request) override {
    asked = request;
    if (answers.empty()) return answer;
    const std::string next = answers.front();
    answers.erase(answers.begin());
    return next;
  }
  std::string saveFile(const platform::desktop::FileRequest& request) override {
    if (request.chosenFilter != nullptr) *request.chosenFilter = filter;
    return openFile(request);
  }
  std::string folder(const std::string& title, const std::string& startFolder) override {
    return openFile({title, startFolder, "", 1, ""});
  }
  bool canAskForFolder() const override { return works; }

  platform::desktop::FileRequest asked;
  std::vector<std::string> answers;  // in turn
  std::string answer;                // then
  int filter = 1;                    // chosen with each name to save
  bool works = true;
};

/// A file pane with what a test says that it holds.
class Pane : public runtime::FilePane {
 public:
  std::vector<std::string> selectedPaths() const override { return selected; }
  std::string selectionText() const override { return "1 items <b>"; }
  std::vector<std::string> paneItems() const override { return items; }
  std::string GetDir1Path() const override { return folder; }
  void selectAllRows() override {
    for (const auto& name : items) selected.push_back(folder + name);
  }
  void refreshKeepList() override { ++refreshes; }
  void showEntry(const std::string& path) override { shown = path; }
  bool setOwnerShown() const override { return rootOffered; }

  std::string folder = "C:\\";
  std::vector<std::string> selected, items;
  std::string shown;
  bool rootOffered = true;
  int refreshes = 0;
};

}  // namespace tests
