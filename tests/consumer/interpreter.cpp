#include <KWBase/KWAlgebricInterpreter.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <iostream>

// Uses expressions without channels, of which a static library then gives it nothing: archives must
// know the interpreter all the same.
int main() {
    const auto written = std::make_shared<KWAlgebricInterpreter>();
    written->setExpressionMode("2*t", KWExpressionModeT);
    const auto read = std::dynamic_pointer_cast<KWAlgebricInterpreter>(
        KWUnarchiver::unarchiveValueWithData(KWArchiver::archivedDataWithRootObject(written))
            .object());
    if (!read)
        return 1;
    std::cout << read->evalTExpression(3) << '\n';
}
