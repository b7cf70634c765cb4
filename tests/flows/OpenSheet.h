#pragma once

#include "Client.h"

#include <algorithm>

inline QList<QPushButton *> defaultButtons(const QWidget *window)
{
    QList<QPushButton *> buttons = window->findChildren<QPushButton *>();
    buttons.removeIf([](const QPushButton *button) { return !button->isDefault() || !button->isVisible(); });
    return buttons;
}

/// Brings a sheet up by "sign-in", "register", "area" or the name of a command, and waits for what it loads.
inline Sheet *openSheet(TarvexDocument *document, const QByteArray &command)
{
    if (command == "area")
        document->showAreaDetails(document->project()->areas()->front(), /*ofIndex=*/0);
    else if (command == "register")
        document->registerClicked();
    else if (command != "sign-in")
        Client::trigger(document, command.constData());
    const auto sheets = document->window()->findChildren<Sheet *>();
    const auto shown =
        std::find_if(sheets.begin(), sheets.end(), [](const Sheet *sheet) { return sheet->isVisible(); });
    if (shown == sheets.end() || !QTest::qWaitForWindowActive(*shown) || !QTest::qWaitFor([&] {
            return defaultButtons(*shown).value(0) && defaultButtons(*shown)[0]->isEnabled();
        }))
        qFatal("the sheet did not come up");
    return *shown;
}
