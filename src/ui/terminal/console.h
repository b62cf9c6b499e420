// The two streams that people and scripts read: answers go to standard output, all else to standard error.
//
//     StandardOutput output;
//     output.write("mv a b\n");
//     output.flush();              // throws OutputError if the stream is closed or the disk full
//     reportProblem("no such folder");
#pragma once

#include <string>
#include <string_view>

namespace brindlet {

// Standard output can't take what was written. `error` is the system's number; EPIPE means that the reader has gone,
// which is nobody's fault and is not reported.
struct OutputError {
    int error;
};

// Buffered; whoever writes flushes at the end, so that no failure is lost.
class StandardOutput {
  public:
    void write(std::string_view text);
    void flush();

  private:
    std::string buffer_;
};

// Standard descriptors that the caller closed are opened on /dev/null, so that no file of ours takes their numbers; a
// reader that goes away becomes EPIPE instead of ending the program, which may have a child to look after, and a file
// that is too large for the limits of the session EFBIG. What this process starts has the usual meaning of all of them
// again.
void prepareStandardStreams();

// As it stands, unbuffered, to a stream that people read. Nobody can be told if it fails.
void writeTo(int descriptor, std::string_view text);

// "brindlet: SENTENCE" on one line of standard error, whatever bytes the sentence quotes.
void reportProblem(std::string_view sentence);

bool isTerminal(int descriptor);
// Colour is for terminals, where NO_COLOR is unset or empty.
bool wantsColour(int descriptor);

}  // namespace brindlet
