#include <apps/common/Errors.h>
#include <apps/kwchannel/Commands.h>

/// Where the views are not built.
void addPlotCommand(Command& program) {
    Command command = program.command("plot", "Draws channels into a picture");
    command.hide();
    command.onRun(
        [] { throw UseError("this kwchannel was built without the views, and draws nothing"); });
}
