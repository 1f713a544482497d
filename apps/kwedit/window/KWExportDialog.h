#pragma once

#include <apps/kwedit/KWEditExporter.h>
#include <apps/kwedit/window/KWEditSession.h>

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QSpinBox;

/// Asks what to export and where, then shows how far it is and how long it will still take. The
/// document is exported as it is when the export begins. Closing cancels.
class KWExportDialog : public QDialog {
    Q_OBJECT

  public:
    enum class Kind { frames, movie, values };

    /// The session must outlive this.
    KWExportDialog(KWEditSession& session, Kind kind, QWidget* parent = nullptr);

    bool isRunning() const { return _exporter.isRunning(); }
    void start();
    void setDestination(const QString& path);
    void setRange(qint64 first, qint64 last);

  Q_SIGNALS:
    /// As KWEditExporter has it.
    void exported(bool isDone, const QString& error);

  protected:
    void reject() override;

  private:
    void makeForm();
    void browse();
    void finished(bool isDone, const QString& error);
    void showProgress(qint64 done, qint64 total, double secondsLeft);
    void updateState();
    QString usualDestination() const;
    QSize size() const;

    KWEditSession& _session;
    Kind _kind;
    KWEditExporter _exporter;
    QLineEdit* _destination;
    QSpinBox* _first;
    QSpinBox* _last;
    QSpinBox* _width = nullptr;
    QSpinBox* _height = nullptr;
    QWidget* _form;
    QProgressBar* _bar;
    QLabel* _status;
    QDialogButtonBox* _buttons;
    QStringList _problems;
};
