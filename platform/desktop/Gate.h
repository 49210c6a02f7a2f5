#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include "platform/Busy.h"

class QWidget;

namespace platform::desktop {

/// What the gate lets through of a person's input, in all windows of the program. While a job holds it:
/// painting, resizing and scrolling go on; the log can be read; windows that the job opens work, and so do
/// the controls that were told of as Remembered or Acts; everything else is dropped. Handlers ask the gate as
/// well, since assistive tools and posted clicks pass any filter. After 300 ms the job counts as slow.
///
/// It also hears the end signals: the job is asked to stop, and then the program ends.
class Gate : public QObject, private Busy::Watcher {
  Q_OBJECT

 public:
  explicit Gate(Busy& busy);  ///< lent for the gate's life; one for a program
  ~Gate() override;

 signals:
  /// The program is to end, and no job runs any more.
  void endWanted();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void began() override;
  void stopWanted() override;
  void ended() override;
  void lookDisabled();
  void hearEndSignals();
  bool passes(QWidget* widget, const QEvent& event) const;

  Busy& busy_;
  QTimer patience_;
  QList<QPointer<QWidget>> opened_;  // windows that were shown since the job began
  QPointer<QWidget> focus_;          // had the keyboard before controls were disabled
  QPointer<QWidget> shifted_;        // got it instead
};

}  // namespace platform::desktop
