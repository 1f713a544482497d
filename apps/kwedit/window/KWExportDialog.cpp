#include <apps/kwedit/window/KWExportDialog.h>

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

QString timeText(double seconds) {
    const auto whole = static_cast<qint64>(seconds + 0.5);
    if (whole < 60)
        return whole == 1 ? KWExportDialog::tr("1 second left")
                          : KWExportDialog::tr("%n seconds left", nullptr, static_cast<int>(whole));
    return KWExportDialog::tr("%1:%2 minutes left")
        .arg(whole / 60)
        .arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QSpinBox* spinBox(int least, int most, int value, const QString& name) {
    auto* const box = new QSpinBox;
    box->setRange(least, most);
    box->setValue(value);
    box->setAccessibleName(name);
    return box;
}

QHBoxLayout* row(std::initializer_list<QWidget*> widgets) {
    auto* const layout = new QHBoxLayout;
    for (QWidget* const widget : widgets)
        layout->addWidget(widget);
    layout->addStretch();
    return layout;
}

} // namespace

KWExportDialog::KWExportDialog(KWEditSession& session, Kind kind, QWidget* parent)
    : QDialog(parent), _session(session), _kind(kind) {
    setWindowTitle(kind == Kind::frames  ? tr("Export Frames")
                   : kind == Kind::movie ? tr("Export Movie")
                                         : tr("Export Values"));
    makeForm();
    connect(&_exporter, &KWEditExporter::progress, this, &KWExportDialog::showProgress);
    connect(&_exporter, &KWEditExporter::problem, this,
            [this](const QString& sentence) { _problems << sentence; });
    connect(&_exporter, &KWEditExporter::finished, this, &KWExportDialog::finished);
    updateState();
}

void KWExportDialog::makeForm() {
    const KWStage stage = _session.document().stage();
    _destination = new QLineEdit(QDir::toNativeSeparators(usualDestination()));
    _destination->setObjectName(QStringLiteral("destination"));
    _destination->setAccessibleName(tr("Destination"));
    auto* const browseButton = new QPushButton(tr("Bro&wse..."));
    browseButton->setAutoDefault(false);
    connect(browseButton, &QPushButton::clicked, this, &KWExportDialog::browse);
    const qint64 first = _session.transport().firstFrame();
    const qint64 last = _session.transport().lastFrame();
    _first = spinBox(-9'999'999, 9'999'999, static_cast<int>(first), tr("First frame"));
    _last = spinBox(-9'999'999, 9'999'999, static_cast<int>(last), tr("Last frame"));

    _form = new QWidget;
    auto* const form = new QFormLayout(_form);
    form->setContentsMargins(0, 0, 0, 0);
    auto* const where = new QHBoxLayout;
    where->addWidget(_destination);
    where->addWidget(browseButton);
    // A row of several fields has no buddy by itself, and would show the mark of the access key.
    const auto addRow = [form](const QString& title, QLayout* fields, QWidget* buddy) {
        auto* const label = new QLabel(title);
        label->setBuddy(buddy);
        form->addRow(label, fields);
    };
    addRow(_kind == Kind::frames ? tr("&Folder:") : tr("&File:"), where, _destination);
    addRow(tr("F&rames:"), row({_first, new QLabel(QStringLiteral("–")), _last}), _first);
    if (_kind != Kind::values) {
        _width = spinBox(1, 16384, stage.size.width(), tr("Width in pixels"));
        _height = spinBox(1, 16384, stage.size.height(), tr("Height in pixels"));
        addRow(tr("&Size:"), row({_width, new QLabel(QStringLiteral("×")), _height}), _width);
    }
    _bar = new QProgressBar;
    _bar->setAccessibleName(tr("Progress"));
    _status = new QLabel;
    _status->setWordWrap(true);
    _buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    auto* const exportButton = _buttons->addButton(tr("&Export"), QDialogButtonBox::AcceptRole);
    connect(_buttons, &QDialogButtonBox::accepted, this, &KWExportDialog::start);
    connect(_buttons, &QDialogButtonBox::rejected, this, &KWExportDialog::reject);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(_form);
    column->addWidget(_bar);
    column->addWidget(_status);
    column->addStretch();
    column->addWidget(_buttons);
    exportButton->setDefault(true); // which takes effect in the dialog only
    setMinimumWidth(480);
    if (_kind == Kind::movie && kwMovieProgram().isEmpty())
        _status->setText(tr("Movies are written by ffmpeg, which is not installed here."));
}

QString KWExportDialog::usualDestination() const {
    const KWEditDocument& document = _session.document();
    QString name = QFileInfo(document.filePath()).completeBaseName();
    if (name.isEmpty())
        name = tr("untitled");
    const char* const ending = _kind == Kind::movie    ? ".mp4"
                               : _kind == Kind::values ? ".csv"
                                                       : "-frames";
    return QDir(document.folder()).filePath(name + QLatin1String(ending));
}

void KWExportDialog::setDestination(const QString& path) {
    _destination->setText(path);
}

void KWExportDialog::setRange(qint64 first, qint64 last) {
    _first->setValue(static_cast<int>(first));
    _last->setValue(static_cast<int>(last));
}

void KWExportDialog::browse() {
    const QString old = _destination->text();
    QString path;
    if (_kind == Kind::frames)
        path = QFileDialog::getExistingDirectory(this, tr("Folder for the Frames"),
                                                 QFileInfo(old).absolutePath());
    else if (_kind == Kind::movie)
        path = QFileDialog::getSaveFileName(this, tr("Movie File"), old,
                                            tr("Movies (*.mp4 *.mov *.mkv *.webm *.gif)"));
    else
        path = QFileDialog::getSaveFileName(this, tr("File for the Values"), old,
                                            tr("Values (*.csv *.json *.jsonl)"));
    if (!path.isEmpty())
        _destination->setText(QDir::toNativeSeparators(path));
}

QSize KWExportDialog::size() const {
    return _width ? QSize(_width->value(), _height->value()) : QSize();
}

void KWExportDialog::start() {
    const QString path = QDir::fromNativeSeparators(_destination->text());
    const KWEditDocument& document = _session.document();
    _problems.clear();
    QString error;
    bool isStarted = false;
    if (path.isEmpty())
        error = tr("Say where to export to.");
    else if (_kind == Kind::frames)
        isStarted =
            _exporter.exportFrames(document, _first->value(), _last->value(), size(), path, &error);
    else if (_kind == Kind::movie)
        isStarted =
            _exporter.exportMovie(document, _first->value(), _last->value(), size(), path, &error);
    else
        isStarted = _exporter.exportValues(document, _first->value(), _last->value(), path, &error);
    _status->setText(isStarted ? tr("Beginning") : error);
    _bar->setRange(0, 0);
    updateState();
}

void KWExportDialog::showProgress(qint64 done, qint64 total, double secondsLeft) {
    _bar->setRange(0, static_cast<int>(total));
    _bar->setValue(static_cast<int>(done));
    QString text = tr("%1 of %2 frames").arg(done).arg(total);
    if (secondsLeft >= 0)
        text += QStringLiteral(", ") + timeText(secondsLeft);
    _status->setText(text);
}

void KWExportDialog::finished(bool isDone, const QString& error) {
    QStringList lines;
    if (!error.isEmpty())
        lines << error;
    else
        lines << (isDone ? tr("Exported to %1").arg(_destination->text()) : tr("Canceled"));
    lines << _problems;
    _status->setText(lines.join(QLatin1Char('\n')));
    if (isDone)
        _buttons->button(QDialogButtonBox::Cancel)->setText(tr("&Close"));
    updateState();
    Q_EMIT exported(isDone, error);
}

void KWExportDialog::updateState() {
    const bool isRunning = _exporter.isRunning();
    _form->setEnabled(!isRunning);
    _bar->setVisible(isRunning);
    for (QAbstractButton* const button : _buttons->buttons())
        if (_buttons->buttonRole(button) == QDialogButtonBox::AcceptRole)
            button->setEnabled(!isRunning && (_kind != Kind::movie || !kwMovieProgram().isEmpty()));
}

/// The first time ends the export, the second the dialog.
void KWExportDialog::reject() {
    if (_exporter.isRunning())
        _exporter.cancel();
    else
        QDialog::reject();
}
