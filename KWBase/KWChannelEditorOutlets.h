#pragma once

#include <KWBase/KWChannelView.h>

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTreeView>
#include <QWidget>

/// Tags of the controls that change the shapes of keys.
enum : int {
    KWShapeTagTension = 0,
    KWShapeTagContinuity = 1,
    KWShapeTagBias = 2,
    KWShapeTagReset = 3,
};

/// The widgets of the channel editor's panel. Any of them may be gone before the controller is.
struct KWChannelEditorOutlets {
    /// What was loaded.
    QPointer<QWidget> root;
    QPointer<QWidget> channelEditorPanel;
    QPointer<QWidget> channelEditorContainer;
    QPointer<QTreeView> elementOV;
    QPointer<KWChannelView> channelView;
    QPointer<QAbstractButton> liveCheckBox;
    QPointer<QAbstractSlider> gridSlider;
    QPointer<QWidget> toolsMatrix;
    QPointer<QComboBox> channelTypePU;
    QPointer<QWidget> optionsBox;
    QPointer<QAbstractButton> copyButton;
    QPointer<QAbstractButton> pasteButton;
    QPointer<QWidget> keyframedView;
    QPointer<QComboBox> interpModePU;
    QPointer<QComboBox> repeatPU;
    QPointer<QAbstractSlider> tensionSlider;
    QPointer<QAbstractSlider> continuitySlider;
    QPointer<QAbstractSlider> biasSlider;
    QPointer<QAbstractButton> resetHermButton;
    QPointer<QWidget> constantView;
    QPointer<QLineEdit> constantValueTF;
    QPointer<QWidget> algebricView;
    QPointer<QLineEdit> expressionTF;

    // Those that a file need not have.
    QPointer<QLabel> tensionReadout;
    QPointer<QLabel> continuityReadout;
    QPointer<QLabel> biasReadout;
    QPointer<QLabel> noOptionsLabel;

    /// What the options box shows; null for none.
    QPointer<QWidget> content;

    // The tool tips of the fields when nothing is wrong.
    QString constantToolTip;
    QString expressionToolTip;
};
