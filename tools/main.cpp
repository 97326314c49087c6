// tessarium: mesh files from the command line.
#include "tool.h"

#include "tessarium/element_type.h"

#include <cstdio>

int main(int argc, char** argv)
{
    CLI::App app("Mesh files from the command line: look inside, convert, repair, skin, judge, grade and move them.",
                 "tessarium");
    app.set_version_flag("--version", std::string("tessarium ") + qv7::tessarium::version());
    app.add_flag("-q,--quiet", tool::progress::quiet, "No progress line on stderr");
    app.require_subcommand(1);
    app.fallthrough();  // --quiet after the subcommand too
    app.footer("Example: tessarium info part.stl\nRun 'tessarium COMMAND --help' for the options of a command.\n");

    tool::runner run;
    tool::add_info(app, run);
    tool::add_convert(app, run);
    tool::add_skin(app, run);
    tool::add_repair(app, run);
    tool::add_quality(app, run);
    tool::add_transform(app, run);
    tool::add_grade(app, run);

    try {
        app.parse(argc, argv);
    } catch (CLI::CallForHelp const& e) {
        return app.exit(e);
    } catch (CLI::CallForAllHelp const& e) {
        return app.exit(e);
    } catch (CLI::CallForVersion const& e) {
        return app.exit(e);
    } catch (CLI::ParseError const& e) {
        std::string help = "tessarium";
        for (CLI::App const* sub : app.get_subcommands()) help += " " + sub->get_name();
        std::fprintf(stderr, "tessarium: %s (see '%s --help')\n", e.what(), help.c_str());
        return tool::exit_usage;
    }
    return run();
}
