#include "session/WindowMemory.h"

#include <array>

namespace quarry {

namespace {

const QLatin1String OrderKey("pref_resultOrder");
const QLatin1String ExpandedKey("pref_expandedFolders");
const QLatin1String SelectedKey("pref_selectedNode");

struct State {
    QLatin1String key;
    QByteArray WindowLayout::*member;
};
const std::array States = {State{QLatin1String("pref_windowGeometry"), &WindowLayout::geometry},
                           State{QLatin1String("pref_treeSplitter"), &WindowLayout::treeSplitter},
                           State{QLatin1String("pref_detailSplitter"), &WindowLayout::detailSplitter},
                           State{QLatin1String("pref_resultColumns"), &WindowLayout::columns},
                           State{QLatin1String("pref_windowDocks"), &WindowLayout::docks}};

} // namespace

WindowMemory::WindowMemory(const HomeFolder& home, FileStore& files)
    : _file(home.preferencesFile(), home.writerLockFile(), files)
{
}

WindowLayout WindowMemory::read() const
{
    const PlistValue::Dictionary entries = _file.read().entries;
    WindowLayout layout;
    for (const State& state : States)
        layout.*state.member = entries.value(state.key).data().value_or(QByteArray());
    const PlistValue::List expanded = entries.value(ExpandedKey).list().value_or(PlistValue::List());
    for (const PlistValue& uuid : expanded)
        layout.expandedFolders.append(uuid.text().value_or(QString()));
    layout.selectedNode = entries.value(SelectedKey).text();
    layout.order = entries.value(OrderKey).integer();
    return layout;
}

QString WindowMemory::write(const WindowLayout& layout) const
{
    // Nothing is written, and no lock taken, where nothing changed.
    if (layout == read())
        return {};
    return _file.change([&layout](PlistValue::Dictionary& entries) {
        for (const State& state : States)
            entries.insert(state.key, layout.*state.member);
        PlistValue::List expanded;
        for (const QString& uuid : layout.expandedFolders)
            expanded.append(uuid);
        entries.insert(ExpandedKey, expanded);
        if (layout.selectedNode)
            entries.insert(SelectedKey, *layout.selectedNode);
        if (layout.order)
            entries.insert(OrderKey, *layout.order);
    });
}

} // namespace quarry
