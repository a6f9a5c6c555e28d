#include "agent/MenuItems.h"

#include "agent/Countdown.h"

namespace quarry {

using Tag = StatusItem::Tag;

void MenuItems::enableAll()
{
    for (const Tag tag : {Tag::OpenApplication, Tag::Refresh, Tag::Quit})
        setEnabled(tag, true);
}

void MenuItems::show(MenuState state, double secondsToLaunch)
{
    setEnabled(Tag::Refresh, state == MenuState::CountingDown);
    // While a refresh runs it stays as it is.
    if (state != MenuState::Updating)
        setEnabled(Tag::OpenApplication, state == MenuState::CountingDown);
    switch (state) {
    case MenuState::CountingDown:
        return setTitle(Tag::Refresh, countdownTitle(secondsToLaunch, _texts));
    case MenuState::Updating:
        return setTitle(Tag::Refresh, _texts.text(QStringLiteral("100_Updating menu string")));
    case MenuState::MainApplicationOpen:
        return setTitle(Tag::Refresh, _texts.text(QStringLiteral("100_Update menu disabled")));
    }
}

void MenuItems::setTitle(Tag tag, const QString& title)
{
    Looks& looks = _looks[tag];
    if (looks.title != title)
        _item.setTitle(tag, title);
    looks.title = title;
}

void MenuItems::setEnabled(Tag tag, bool enabled)
{
    Looks& looks = _looks[tag];
    if (looks.enabled != enabled)
        _item.setEnabled(tag, enabled);
    looks.enabled = enabled;
}

} // namespace quarry
