// Whether the system's packages offer a newer Brindlet: updates come with the system's own.
#pragma once

#include <QString>
#include <functional>

namespace brindlet {

// Asks apt-cache(8), which may take a second; `told` hears the answer as one sentence, on this thread.
void checkForUpdates(const QString& version, std::function<void(const QString& sentence)> told);

// Of what `apt-cache policy` printed. Public for its tests.
QString updateSentence(const QString& policy, const QString& version);

}  // namespace brindlet
