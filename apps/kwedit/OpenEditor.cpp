#include <apps/common/ExitCodes.h>
#include <apps/common/Output.h>
#include <apps/kwedit/OpenEditor.h>

int openEditor(int, char**, const std::vector<std::string>&) {
    complain("there is no window in this build; see kwedit --help for what it does without one");
    return exitWrongUse;
}
