#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>

namespace quarry {

/// The status bar of an X11 screen, which owns a selection; on other screens there is none. Main thread only.
class TrayWindow final : public QAbstractNativeEventFilter {
public:
    /// `changed` is called when a bar took the selection, amid an event: it must not destroy this object.
    explicit TrayWindow(std::function<void()> changed);
    ~TrayWindow() override;
    TrayWindow(const TrayWindow&) = delete;
    TrayWindow& operator=(const TrayWindow&) = delete;

    [[nodiscard]] bool isThere() const;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::function<void()> _changed;
    std::uint32_t _selection = 0; ///< Its atom; 0 without an X11 screen.
    std::uint32_t _manager = 0;   ///< The atom of the message by which an owner makes itself known.
};

} // namespace quarry
