#pragma once

/// Watches whether the program still answers people; long work on the caller's thread holds it off.
///
/// Threads  Any. Calls are counted: it is held off until each beginning has its end.
class SystemWatchdog {
public:
    static void beginLifeSupport();
    static void endLifeSupport();
    /// True while it is held off.
    [[nodiscard]] static bool isHeldOff();
};

/// True once somebody has asked long work on the caller's thread to stop, as by the escape key.
[[nodiscard]] bool g_esc_pressed();

/// Says who knows whether escape was pressed; null for nobody, which is so at the start. Gives back the one before.
using EscapeTest = bool (*)();
EscapeTest installEscapeTest(EscapeTest test) noexcept;
