#pragma once

#include <QString>

/// Shows one failure to the user and returns once it is dismissed.
class AlertPresenter
{
public:
    virtual ~AlertPresenter() = default;
    /// The text is shown as it stands, never as markup.
    virtual void showError(const QString &description) = 0;
};

/// The toolkit's message box, over whichever window the user is working in.
class MessageBoxAlertPresenter : public AlertPresenter
{
public:
    void showError(const QString &description) override;
};
