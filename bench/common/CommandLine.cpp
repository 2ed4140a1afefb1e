#include "bench/common/CommandLine.h"

#include <CLI/CLI.hpp>
#include <cstdlib>

namespace bench {

void parseOptions(int argc, char** argv, const std::string& purpose, Options* options,
                  const std::vector<ExtraOption>& extra) {
    CLI::App app(purpose);
    app.add_flag("--json", options->json, "Print JSON instead of tables");
    app.add_flag("--check", options->check, "End with status 1 when a limit is exceeded");
    app.add_option("--rounds", options->rounds, "Rounds of baseline and ours")
            ->check(CLI::Range(1, 1000))
            ->capture_default_str();
    app.add_option("--seconds", options->seconds, "How long each side of a round is measured")
            ->check(CLI::Range(0.001, 60.0))
            ->capture_default_str();
    app.add_option("--only", options->only, "Measure the workloads whose name has this text in it");
    for (const ExtraOption& option : extra) {
        app.add_option(option.name, *option.value, option.description)->capture_default_str();
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        std::exit(app.exit(end));
    }
}

}  // namespace bench
