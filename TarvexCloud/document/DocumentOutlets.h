#pragma once

#include "BusyIndicator.h"
#include "ElidedLabel.h"
#include "MessageLine.h"
#include "ProjectNameSheet.h"
#include "RotatedLabel.h"
#include "SignInSheet.h"
#include "SourcedComboBox.h"
#include "TarvexView.h"

#include <array>
#include <QAction>
#include <QLineEdit>
#include <QMainWindow>
#include <QMap>
#include <QPointer>
#include <QToolBar>

/// What the document's layout consists of, by name. The setters only set: nothing is connected, shown or
/// loaded, and nothing is owned, since a document whose own window never loaded borrows the outlets of
/// another one, which may be gone before it. Any of them may be null.
class DocumentOutlets
{
public:
    ProjectNameSheet *wndProjectName() const { return m_wndProjectName; }
    void setWndProjectName(ProjectNameSheet *wndProjectName);
    /// The set-name sheet's own controls where there is a sheet; null before its first showing.
    QLineEdit *textProjectName() const;
    void setTextProjectName(QLineEdit *textProjectName);
    BusyIndicator *projectNameIndicator() const;
    void setProjectNameIndicator(BusyIndicator *projectNameIndicator);

    ElidedLabel *label1() const { return m_labels[0]; }
    void setLabel1(ElidedLabel *label1) { m_labels[0] = label1; }
    ElidedLabel *label2() const { return m_labels[1]; }
    void setLabel2(ElidedLabel *label2) { m_labels[1] = label2; }
    ElidedLabel *label3() const { return m_labels[2]; }
    void setLabel3(ElidedLabel *label3) { m_labels[2] = label3; }
    ElidedLabel *label4() const { return m_labels[3]; }
    void setLabel4(ElidedLabel *label4) { m_labels[3] = label4; }
    ElidedLabel *label5() const { return m_labels[4]; }
    void setLabel5(ElidedLabel *label5) { m_labels[4] = label5; }
    ElidedLabel *label6() const { return m_labels[5]; }
    void setLabel6(ElidedLabel *label6) { m_labels[5] = label6; }
    ElidedLabel *label7() const { return m_labels[6]; }
    void setLabel7(ElidedLabel *label7) { m_labels[6] = label7; }
    ElidedLabel *label8() const { return m_labels[7]; }
    void setLabel8(ElidedLabel *label8) { m_labels[7] = label8; }
    RotatedLabel *label1Percent() const { return m_percentLabels[0]; }
    void setLabel1Percent(RotatedLabel *label1Percent) { m_percentLabels[0] = label1Percent; }
    RotatedLabel *label2Percent() const { return m_percentLabels[1]; }
    void setLabel2Percent(RotatedLabel *label2Percent) { m_percentLabels[1] = label2Percent; }
    RotatedLabel *label3Percent() const { return m_percentLabels[2]; }
    void setLabel3Percent(RotatedLabel *label3Percent) { m_percentLabels[2] = label3Percent; }
    RotatedLabel *label4Percent() const { return m_percentLabels[3]; }
    void setLabel4Percent(RotatedLabel *label4Percent) { m_percentLabels[3] = label4Percent; }
    RotatedLabel *label5Percent() const { return m_percentLabels[4]; }
    void setLabel5Percent(RotatedLabel *label5Percent) { m_percentLabels[4] = label5Percent; }
    RotatedLabel *label6Percent() const { return m_percentLabels[5]; }
    void setLabel6Percent(RotatedLabel *label6Percent) { m_percentLabels[5] = label6Percent; }
    RotatedLabel *label7Percent() const { return m_percentLabels[6]; }
    void setLabel7Percent(RotatedLabel *label7Percent) { m_percentLabels[6] = label7Percent; }
    RotatedLabel *label8Percent() const { return m_percentLabels[7]; }
    void setLabel8Percent(RotatedLabel *label8Percent) { m_percentLabels[7] = label8Percent; }
    QLabel *labelMainPercent() const { return m_labelMainPercent; }
    void setLabelMainPercent(QLabel *labelMainPercent) { m_labelMainPercent = labelMainPercent; }

    TarvexView *wheelView() const { return m_wheelView; }
    void setWheelView(TarvexView *wheelView) { m_wheelView = wheelView; }
    SourcedComboBox *listOfProjects() const { return m_listOfProjects; }
    void setListOfProjects(SourcedComboBox *listOfProjects) { m_listOfProjects = listOfProjects; }
    Sheet *wndAreaDetails() const { return m_wndAreaDetails; }
    void setWndAreaDetails(Sheet *wndAreaDetails) { m_wndAreaDetails = wndAreaDetails; }
    Sheet *wndRenameAreas() const { return m_wndRenameAreas; }
    void setWndRenameAreas(Sheet *wndRenameAreas) { m_wndRenameAreas = wndRenameAreas; }
    Sheet *wndNextGoals() const { return m_wndNextGoals; }
    void setWndNextGoals(Sheet *wndNextGoals) { m_wndNextGoals = wndNextGoals; }
    SignInSheet *wndSignIn() const { return m_wndSignIn; }
    void setWndSignIn(SignInSheet *wndSignIn) { m_wndSignIn = wndSignIn; }
    Sheet *wndSignUp() const { return m_wndSignUp; }
    void setWndSignUp(Sheet *wndSignUp) { m_wndSignUp = wndSignUp; }
    BusyIndicator *indicator() const { return m_indicator; }
    void setIndicator(BusyIndicator *indicator) { m_indicator = indicator; }
    QLineEdit *textPassword() const { return m_textPassword; }
    void setTextPassword(QLineEdit *textPassword) { m_textPassword = textPassword; }
    QLineEdit *textUsername() const { return m_textUsername; }
    void setTextUsername(QLineEdit *textUsername) { m_textUsername = textUsername; }
    MessageLine *textSignInErrorMessage() const { return m_textSignInErrorMessage; }
    void setTextSignInErrorMessage(MessageLine *textSignInErrorMessage)
    {
        m_textSignInErrorMessage = textSignInErrorMessage;
    }

    /// @name For layouts that have them
    /// The product does nothing with these.
    /// @{
    QMap<QString, QAction *> &toolbarItems() { return m_toolbarItems; }
    QToolBar *toolBar() const { return m_toolBar; }
    void setToolBar(QToolBar *toolBar) { m_toolBar = toolBar; }
    QMainWindow *mainWindow() const { return m_mainWindow; }
    void setMainWindow(QMainWindow *mainWindow) { m_mainWindow = mainWindow; }
    QWidget *pleaseWait() const { return m_pleaseWait; }
    void setPleaseWait(QWidget *pleaseWait) { m_pleaseWait = pleaseWait; }
    /// @}

protected:
    DocumentOutlets() = default;
    ~DocumentOutlets() = default;

    static constexpr std::size_t areaCount = WheelGeometry::sliceCount;

    QPointer<ProjectNameSheet> m_wndProjectName;
    QPointer<QLineEdit> m_textProjectName;          // until there is a sheet to give it to
    QPointer<BusyIndicator> m_projectNameIndicator; // likewise
    std::array<QPointer<ElidedLabel>, areaCount> m_labels;
    std::array<QPointer<RotatedLabel>, areaCount> m_percentLabels;
    QPointer<QLabel> m_labelMainPercent;
    QPointer<TarvexView> m_wheelView;
    QPointer<SourcedComboBox> m_listOfProjects;
    QPointer<Sheet> m_wndAreaDetails;
    QPointer<Sheet> m_wndRenameAreas;
    QPointer<Sheet> m_wndNextGoals;
    QPointer<SignInSheet> m_wndSignIn;
    QPointer<Sheet> m_wndSignUp;
    QPointer<BusyIndicator> m_indicator;
    QPointer<QLineEdit> m_textPassword;
    QPointer<QLineEdit> m_textUsername;
    QPointer<MessageLine> m_textSignInErrorMessage;

private:
    QMap<QString, QAction *> m_toolbarItems;
    QPointer<QToolBar> m_toolBar;
    QPointer<QMainWindow> m_mainWindow;
    QPointer<QWidget> m_pleaseWait;
};
