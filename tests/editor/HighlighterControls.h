#pragma once

#include <functional>
#include <memory>

#include "editor/RichTextBox.h"

// A control for the highlighter's tests, with a way to read back the colour
// of every character; one for each implementation of the control.
struct HighlighterControl {
    RichTextBox* Box = nullptr;
    // Keeps the control (and whatever window holds it) alive.
    std::shared_ptr<void> Owner;
    std::function<uint32_t(int32_t Position)> ColorAt;
    // Called after every step that paints, to let the control settle (a
    // window lays out and repaints).
    std::function<void()> Settle = [] {};
};

using HighlighterControlFactory = std::function<HighlighterControl()>;
