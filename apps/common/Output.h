#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Writes a text to standard output or into a file, in blocks. A file appears under its name when
/// everything has been written and not before; until then it is a temporary file beside it, which
/// goes away with this object, and also when the program is interrupted.
///
/// Failures raise KWArchiveError (cannotWrite), a reader that has gone raises BrokenPipe.
class Output {
  public:
    /// "" or "-" is standard output. A device or pipe is written to as it is.
    explicit Output(const std::string& path);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);

    /// Writes what is left and puts the file in its place. Without this call nothing stays.
    void finish();

    /// Whether what is written shows on a terminal.
    bool isTerminal() const;

  private:
    void openFile(const std::string& path);
    void flush();
    [[noreturn]] void fail(int error) const;

    std::string _path;      ///< for messages
    std::string _target;    ///< the file to replace; "" where there is none
    std::string _temporary; ///< "" where there is none
    int _descriptor;
    bool _isOwned = false;
    std::string _buffer;
};

/// Writes one text to standard output.
void print(std::string_view text);

/// Puts one line on standard error: the program, ": " and the text.
void complain(std::string_view text);

/// Puts lines on standard error as they are.
void showOnStandardError(std::string_view text);

/// Makes interruptions end the program with exit code 130, a line on standard error and no
/// temporary file left, broken pipes an error of writing, and standard streams that came closed an
/// error when they are used.
///
/// `programName` begins what is said on standard error.
void setUpProcess(std::string_view programName);
