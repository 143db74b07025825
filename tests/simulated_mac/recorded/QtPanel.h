#pragma once

#include <Qt>

namespace corvane::simulated {

/// A window of a program that is not the active one, as Qt's plugin for a Mac treats it by the
/// window's type.
class QtPanel {
public:
    explicit QtPanel(Qt::WindowFlags flags)
        : m_type(static_cast<Qt::WindowType>((flags & Qt::WindowType_Mask).toInt()))
    {
    }

    void open() { m_isOpen = true; }
    void close()
    {
        m_isOpen = false;
        m_hasMonitor = false;
    }

    bool isOpen() const { return m_isOpen; }
    bool hasKeyFocus() const { return m_isOpen && takesKeyFocus(); }

    /// Closes a pop-up through its monitor of clicks; any other by the loss of the key focus, which
    /// the panel takes as the sign to close.
    void clickElsewhere()
    {
        if (m_type == Qt::Popup ? m_hasMonitor : hasKeyFocus())
            close();
    }

private:
    bool takesKeyFocus() const { return m_type == Qt::Tool || m_type == Qt::Dialog; }

    Qt::WindowType m_type;
    bool m_isOpen = false;
    bool m_hasMonitor = true; ///< Installed with the window, removed by its first closing.
};

} // namespace corvane::simulated
