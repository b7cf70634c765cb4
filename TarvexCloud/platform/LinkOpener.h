#pragma once

class QUrl;

/// Opens addresses outside of the application.
class LinkOpener
{
public:
    virtual ~LinkOpener() = default;
    /// Does not wait, and reports no failure.
    virtual void openLink(const QUrl &address) = 0;
};

/// The user's own web browser.
class BrowserLinkOpener : public LinkOpener
{
public:
    void openLink(const QUrl &address) override;
};
