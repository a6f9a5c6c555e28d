#include "agent/ui/TrayStatusItem.h"

#include "agent/ui/InfoMenuView.h"
#include "agent/ui/Pictures.h"

#include <QAction>
#include <QCursor>
#include <QGuiApplication>
#include <QTimer>
#include <QWidgetAction>

namespace quarry {

namespace {

const QString ProductName = QStringLiteral("QuarrySpotter");

/// Longer rows are cut; titles can be of any length.
constexpr int WidestInfo = 480;

/// A menu takes "&" as the mark of a letter to press.
QString menuText(const QString& text)
{
    return QString(text).replace(u'&', QLatin1String("&&"));
}

/// The same for a menu that the desktop draws. The first "&" on the way there becomes an underscore, which marks the
/// letter there; doubled, it marks itself. The others stay.
QString exportedText(const QString& text)
{
    QString escaped = QString(text).replace(u'_', QLatin1String("__"));
    if (const qsizetype mark = escaped.indexOf(u'&'); mark >= 0)
        escaped.insert(mark, u'&');
    return escaped;
}

} // namespace

TrayStatusItem::TrayStatusItem(const StringTable& texts, const QString& resourcesFolder,
                               std::function<void()> reportNoTray, std::chrono::milliseconds patience)
    : _plain(pictureNamed(QStringLiteral("MenuIcon"), resourcesFolder)),
      _highlighted(pictureNamed(QStringLiteral("MenuIconH"), resourcesFolder)), _reportNoTray(std::move(reportNoTray)),
      _patience(patience)
{
    addItem(Tag::OpenApplication, texts.text(QStringLiteral("100_Open menu string")));
    addItem(Tag::Refresh, texts.text(QStringLiteral("100_Updating menu string")));
    addItem(Tag::Quit, texts.text(QStringLiteral("100_Quit menu string")));
}

TrayStatusItem::~TrayStatusItem() = default;

void TrayStatusItem::addItem(Tag item, const QString& title)
{
    QAction* added = _menu.addAction(menuText(title));
    QObject::connect(added, &QAction::triggered, &_menu, [this, item] {
        if (_handler)
            _handler(item);
    });
    _items.emplace(item, added);
}

QAction& TrayStatusItem::action(Tag item) const
{
    return *_items.at(item);
}

// --- The tray -------------------------------------------------------------------------------------------------------

void TrayStatusItem::show()
{
    _watch.start([this](TrayWatch::Kind kind) { trayFound(kind); });
    QTimer::singleShot(_patience, &_watch, [this] {
        if (!_tray && _reportNoTray)
            _reportNoTray();
    });
}

void TrayStatusItem::trayFound(TrayWatch::Kind kind)
{
    _tray = std::make_unique<QSystemTrayIcon>(picture());
    if (kind == TrayWatch::Kind::Bus) {
        _exported = std::make_unique<QMenu>();
        for (const auto& [item, action] : _items)
            _exported->addAction(action);
        addInfoRows();
    }
    _tray->setContextMenu(_exported ? _exported.get() : &_menu);
    QObject::connect(_tray.get(), &QSystemTrayIcon::activated, &_menu,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger)
                             clicked();
                     });
    updateToolTip();
    _tray->show();
}

void TrayStatusItem::clicked()
{
    // A program without a window cannot place a menu on a screen of another kind; the desktop's own menu is there.
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        _menu.popup(QCursor::pos());
    else if (action(Tag::OpenApplication).isEnabled() && _handler)
        _handler(Tag::OpenApplication);
}

const QIcon& TrayStatusItem::picture() const
{
    return _icon == Icon::Highlighted ? _highlighted : _plain;
}

void TrayStatusItem::setIcon(Icon icon)
{
    if (icon == _icon)
        return;
    _icon = icon;
    if (_tray)
        _tray->setIcon(picture());
}

// --- The menu -------------------------------------------------------------------------------------------------------

void TrayStatusItem::setTitle(Tag item, const QString& title)
{
    // Any change of a menu that the desktop draws travels to it, and may close it under the pointer.
    if (const QString text = menuText(title); action(item).text() != text)
        action(item).setText(text);
}

void TrayStatusItem::setEnabled(Tag item, bool enabled)
{
    if (action(item).isEnabled() != enabled)
        action(item).setEnabled(enabled);
}

void TrayStatusItem::setInfo(const InfoText& text)
{
    const QString whole = text.heading + text.body();
    if (whole.isEmpty() || whole == _info)
        return;
    removeInfo();
    _info = whole;
    auto* view = new InfoMenuView;
    view->setFont(_menu.font());
    view->setText(text);
    view->setMinimumSize(std::min(view->widthForWholeText(), WidestInfo), view->sizeHint().height());
    auto item = std::make_unique<QWidgetAction>(nullptr);
    item->setText(menuText(whole));
    item->setDefaultWidget(view);
    _menu.addAction(item.get());
    _infoAction = std::move(item);
    addInfoRows();
    updateToolTip();
}

void TrayStatusItem::addInfoRows()
{
    if (!_exported || _info.isEmpty())
        return;
    for (const QString& row : _info.split(u'\n', Qt::SkipEmptyParts)) {
        auto item = std::make_unique<QAction>(exportedText(row));
        item->setEnabled(false);
        _exported->addAction(item.get());
        _infoRows.push_back(std::move(item));
    }
}

void TrayStatusItem::removeInfo()
{
    if (_info.isEmpty())
        return;
    _info.clear();
    _infoAction.reset();
    _infoRows.clear();
    updateToolTip();
}

void TrayStatusItem::updateToolTip()
{
    // Also what a screen reader says of the icon.
    if (_tray)
        _tray->setToolTip(_info.isEmpty() ? ProductName : ProductName + u'\n' + _info);
}

} // namespace quarry
