// Links the installed library and uses its registry and serialization frame.
#include <cstdio>
#include <cstdlib>

#include <Korvo/Plexis/Tessel/Client.h>

int main() {
    using namespace Korvo::Plexis::Tessel::Logging;
    auto& loggers = Loggers::GetInstance();
    loggers.SetLoggerFactory(std::make_unique<StandardErrorLoggerFactory>());
    if (!loggers.GetLogger("consumer") || loggers.GetLoggingLevel() != ILogger::Warning) {
        return EXIT_FAILURE;
    }
    unsigned char bytes[] = {1, 2, 3};
    Korvo::Common::Serialization::PointerBuffer view(bytes, sizeof bytes);
    std::printf("consumer linked Korvo::TesselClient; buffer of %u bytes\n", view.Size());
    return view.Size() == 3 ? EXIT_SUCCESS : EXIT_FAILURE;
}
