#pragma once

#include <QString>

#include <functional>
#include <vector>

namespace quarry {

/// The text of the info item: a heading and lines, each line's title slanted.
struct InfoText {
    struct Line {
        QString text;              ///< As formatted, its own line end in front.
        qsizetype titleLength = 0; ///< So many characters at the line's end are the query's title.
    };

    QString heading;
    std::vector<Line> lines;

    /// The lines without the heading.
    [[nodiscard]] QString body() const;
};

/// The item in the desktop's status bar with its menu. The implementation draws; what it shows is decided elsewhere.
/// A desktop without a status bar shows nothing of it. Main thread only.
class StatusItem {
public:
    /// The menu's fixed items, by their tags.
    enum class Tag { OpenApplication = 1, Refresh = 2, Quit = 99 };
    enum class Icon { Plain, Highlighted };

    virtual ~StatusItem() = default;
    /// Puts it into the status bar, now or as soon as the desktop has one.
    virtual void show() = 0;
    virtual void setIcon(Icon icon) = 0;
    /// Callers may repeat themselves: what is shown already is not touched.
    virtual void setTitle(Tag item, const QString& title) = 0;
    virtual void setEnabled(Tag item, bool enabled) = 0;
    /// Appends the info item to the end of the menu, or takes it away.
    virtual void setInfo(const InfoText& text) = 0;
    virtual void removeInfo() = 0;
    virtual void setActionHandler(std::function<void(Tag)> handler) = 0;
};

} // namespace quarry
