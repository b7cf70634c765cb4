#pragma once

#include "TarvexView.h"

#include <QAccessibleWidget>
#include <QPointer>

/// The wheel as assistive tools see it: one graphic with a child per area, in the order of the dial.
class TarvexViewAccessible : public QAccessibleWidget
{
public:
    /// Makes the toolkit use this class for every TarvexView; calling it again changes nothing.
    static void install();

    explicit TarvexViewAccessible(TarvexView *view) : QAccessibleWidget(view, QAccessible::Graphic) {}
    ~TarvexViewAccessible() override;

    int childCount() const override { return view()->areaCount(); }
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    QString text(QAccessible::Text kind) const override;

private:
    TarvexView *view() const { return static_cast<TarvexView *>(widget()); }

    /// Made when first asked for; they belong to the toolkit's cache under these ids.
    mutable std::array<QAccessible::Id, WheelGeometry::sliceCount> m_children = {};
};

/// One slice: its area's name, its value, all of it in words; pressing it is clicking it.
class WheelSliceAccessible : public QAccessibleInterface,
                             public QAccessibleActionInterface,
                             public QAccessibleValueInterface
{
public:
    WheelSliceAccessible(TarvexView *view, int index) : m_view(view), m_index(index) {}

    int index() const { return m_index; }

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::Button; }
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString &actionName) override;
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

    /// The value can be read here, in the range of the slider that changes it in the area's details.
    QVariant currentValue() const override { return valueOfArea(); }
    void setCurrentValue(const QVariant &) override {}
    QVariant minimumValue() const override;
    QVariant maximumValue() const override;
    QVariant minimumStepSize() const override { return 1; }

private:
    qint32 valueOfArea() const;

    QPointer<TarvexView> m_view;
    int m_index;
};
