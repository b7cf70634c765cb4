#pragma once

class QUrl;

/// Opens addresses and files outside of the application.
class LinkOpener
{
public:
    virtual ~LinkOpener() = default;
    /// Does not wait. False if there is nothing that could be asked to open it; what became of it otherwise,
    /// nobody tells.
    virtual bool openLink(const QUrl &address) = 0;
};

/// The user's own web browser.
class BrowserLinkOpener : public LinkOpener
{
public:
    bool openLink(const QUrl &address) override;
};
