#pragma once

#include <QString>
#include <optional>

namespace tarvex {

// Message boxes and input boxes. The style follows the classic message box: buttons
// plus icon plus default button, e.g. YesNo | Question | DefaultButton2.
namespace msg {
enum Style : int {
    OkOnly = 0,
    OkCancel = 1,
    AbortRetryIgnore = 2,
    YesNoCancel = 3,
    YesNo = 4,
    RetryCancel = 5,
    Critical = 16,
    Question = 32,
    Exclamation = 48,
    Information = 64,
    DefaultButton2 = 256,
    DefaultButton3 = 512,
};
} // namespace msg

enum class Answer { Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

class Prompter {
public:
    virtual ~Prompter() = default;
    // Shows a message box and returns the button pressed.
    virtual Answer MsgBox(const QString& text, int style, const QString& title) = 0;
    // Shows an input box; nullopt when the user cancels.
    virtual std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                            const QString& defaultText) = 0;
};

} // namespace tarvex
