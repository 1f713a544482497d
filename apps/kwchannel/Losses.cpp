#include <apps/common/Errors.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Losses.h>

void tellLosses(const KWDocument& document, KWDocument::Form form, const KWClassVersions& versions,
                bool isLossy, const std::string& outcome, const std::string& advice) {
    const KWConversionLosses found = kwConversionLosses(document, form, versions);
    const std::string file = printable(document.file()) + ": ";
    for (const std::string& line : found.refusals)
        complain(file + "cannot be written: " + printable(line));
    for (const std::string& line : found.losses)
        complain(file + (isLossy ? "lost: " : "would be lost: ") + printable(line));
    if (!found.refusals.empty())
        throw DataError(document.file() + ": " + outcome + ", as it holds what a " +
                        (form == KWDocument::Form::sequential ? "sequential" : "keyed") +
                        " archive cannot hold");
    if (!found.losses.empty() && !isLossy)
        throw DataError(document.file() + ": " + outcome + ", as " +
                        counted(found.losses.size(), "thing") + " would be lost; " + advice);
}
