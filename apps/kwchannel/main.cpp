#include <apps/kwchannel/Commands.h>

int main(int argc, char** argv) {
    return runProgram(argc, argv);
}
