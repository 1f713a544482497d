#include <apps/common/Errors.h>
#include <apps/kwchannel/Commands.h>

/// Where the views are not built.
void addPlotCommand(CLI::App& program) {
    CLI::App* const command = program.add_subcommand("plot", "Draws channels into a picture");
    command->allow_extras();
    command->group("");
    command->callback(
        [] { throw UseError("this kwchannel was built without the views, and draws nothing"); });
}
