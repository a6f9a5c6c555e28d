#pragma once

#include "window/ResultEdits.h"
#include "window/ResultsPane.h"

#include <QObject>
#include <QTimer>

namespace quarry {

/// Marks a result as read once it has been the only selected one for a moment, however it came to be selected. What
/// the user says of it meanwhile holds: it is left alone until another is selected.
///
/// Where the unread ones come first, reading would move it away from under the user's eyes: there it is marked when he
/// goes on to another.
class SeenResults final : public QObject {
    Q_OBJECT

public:
    /// Both must outlive the object.
    SeenResults(const ResultsPane& pane, ResultEdits& edits, QObject* parent);

    /// What is selected may have changed.
    void follow();
    /// The user marked it himself.
    void leaveAlone();

private:
    void stayedLongEnough();

    const ResultsPane& _pane;
    ResultEdits& _edits;
    QTimer _moment;
    QString _query; ///< With the key: the result that is selected alone.
    QString _key;
    ResultSelection _result;
    bool _isSeen = false; ///< And is marked when it is left.
};

} // namespace quarry
