#include <apps/kwedit/window/KWEditQuestions.h>
#include <apps/kwedit/window/KWElementInspector.h>

#include <QCoreApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace {

struct Text {
    Q_DECLARE_TR_FUNCTIONS(KWEditQuestions)
};

struct FormFilter {
    KWEditDocument::Form form;
    QString filter;
};

QList<FormFilter> formFilters() {
    using Form = KWEditDocument::Form;
    return {{Form::binary, Text::tr("Keyed archive, binary (*.kwdoc)")},
            {Form::xml, Text::tr("Keyed archive, XML (*.kwdoc *.xml)")},
            {Form::sequential, Text::tr("Sequential archive (*.kwdoc *.typedstream)")}};
}

} // namespace

KWEditQuestions::~KWEditQuestions() = default;

QStringList KWEditQuestions::documentsToOpen(QWidget* window, const QString& folder) {
    return QFileDialog::getOpenFileNames(
        window, Text::tr("Open"), folder,
        Text::tr("Documents (*.kwdoc *.xml *.plist *.typedstream);;All files (*)"));
}

std::optional<KWEditQuestions::Target> KWEditQuestions::whereToSave(QWidget* window,
                                                                    const QString& title,
                                                                    const QString& path,
                                                                    KWEditDocument::Form form) {
    QStringList filters;
    QString chosen;
    for (const FormFilter& entry : formFilters()) {
        filters << entry.filter;
        if (entry.form == form)
            chosen = entry.filter;
    }
    QFileDialog dialog(window, title, path);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(chosen);
    dialog.setDefaultSuffix(QStringLiteral("kwdoc"));
    if (!path.isEmpty())
        dialog.selectFile(path);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    Target target{dialog.selectedFiles().constFirst(), form};
    for (const FormFilter& entry : formFilters())
        if (entry.filter == dialog.selectedNameFilter())
            target.form = entry.form;
    return target;
}

QStringList KWEditQuestions::filesToPlace(QWidget* window, const QString& folder) {
    return QFileDialog::getOpenFileNames(window, Text::tr("New from Files"), folder,
                                         KWElementInspector::fileFilter());
}

KWEditQuestions::Unsaved KWEditQuestions::whatOfUnsaved(QWidget* window, const QString& name) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("kwedit"),
                    Text::tr("Save the changes to %1?").arg(name),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, window);
    box.setInformativeText(Text::tr("Otherwise they are lost."));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
    case QMessageBox::Save:
        return Unsaved::save;
    case QMessageBox::Discard:
        return Unsaved::discard;
    default:
        return Unsaved::cancel;
    }
}

bool KWEditQuestions::mayGoOn(QWidget* window, const QString& text, const QString& detail,
                              const QString& button) {
    QMessageBox box(QMessageBox::Question, QStringLiteral("kwedit"), text, QMessageBox::Cancel,
                    window);
    box.setInformativeText(detail);
    QPushButton* const yes = box.addButton(button, QMessageBox::AcceptRole);
    box.setDefaultButton(yes);
    box.exec();
    return box.clickedButton() == yes;
}

KWEditQuestions::Copy KWEditQuestions::whatOfCopy(QWidget* window, const QString& text,
                                                  const QString& detail) {
    QMessageBox box(QMessageBox::Question, QStringLiteral("kwedit"), text, QMessageBox::NoButton,
                    window);
    box.setInformativeText(detail);
    QPushButton* const recover = box.addButton(Text::tr("Recover"), QMessageBox::AcceptRole);
    QPushButton* const discard = box.addButton(QMessageBox::Discard);
    QPushButton* const later = box.addButton(Text::tr("Later"), QMessageBox::RejectRole);
    box.setDefaultButton(recover);
    box.setEscapeButton(later);
    box.exec();
    return box.clickedButton() == recover   ? Copy::recover
           : box.clickedButton() == discard ? Copy::discard
                                            : Copy::later;
}

QString KWEditQuestions::name(QWidget* window, const QString& title, const QString& label,
                              const QString& old) {
    bool isAccepted = false;
    const QString text =
        QInputDialog::getText(window, title, label, QLineEdit::Normal, old, &isAccepted);
    return isAccepted ? text : QString();
}

void KWEditQuestions::complain(QWidget* window, const QString& text, const QString& reason) {
    QMessageBox box(QMessageBox::Critical, QStringLiteral("kwedit"), text, QMessageBox::Ok, window);
    box.setInformativeText(reason);
    box.exec();
}
