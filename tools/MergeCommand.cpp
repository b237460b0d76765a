#include "MergeCommand.h"

#include <filesystem>
#include <memory>

#include "FileReader.h"
#include "OutputFile.h"
#include "StandardOutput.h"
#include "Text.h"
#include "documents/ZRFxXml.h"
#include "merge/ModelMerge.h"
#include "merge/StateSettings.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr const char* kExamples =
    "  zrfx merge run.zrfx restart.zrfx -o whole.zrfx      # the states of a run that went on\n"
    "  zrfx merge domain0.zrfx domain1.zrfx -o all.zrfx    # the parts of a divided model";

struct Options {
    std::vector<std::string> files;
    std::string out;
};

// Files hold one model each.
ZRFxDatabase* onlyDatabase(ToolContext& context, FileReader& reader) {
    if (reader.databases().size() == 1) return reader.databases().front().get();
    context.fail(reader.path(),
                 reader.databases().empty() ? "there is no database" : "has several databases");
    return nullptr;
}

// Adds the models of the other files to a copy of the first.
class Merging {
public:
    Merging(ToolContext& context, const Options& options, const FileReader& first)
        : m_context(context), m_options(options), m_first(first) {}

    bool run(const std::string& path) {
        if (!m_file.openForAppend(path, m_first.password())) return fail(m_options.files.front());
        ZRFxDatabase into(m_file.internal_access());
        if (!into.Parse(m_first.databases().front()->GetID())) return fail(m_options.files.front());
        for (std::size_t i = 1; i < m_options.files.size(); ++i) {
            if (!add(m_options.files[i], into)) return false;
        }
        return (showNewStates(*m_file.internal_access(), into.GetID(), m_newStates) &&
                m_file.close()) ||
               fail(m_options.out);
    }

private:
    bool add(const std::string& path, ZRFxDatabase& into) {
        FileReader reader(m_context);
        if (!reader.open(path)) return false;
        ZRFxDatabase* from = onlyDatabase(m_context, reader);
        if (!from) return false;
        ModelMerge merge(into, *from);
        if (!merge.run()) return fail(path);
        print(printable(path + ": " + merge.summary()) + "\n");
        m_newStates.insert(m_newStates.end(), merge.newStates().begin(), merge.newStates().end());
        return true;
    }

    bool fail(const std::string& file) {
        m_context.fail(file);
        return false;
    }

    ToolContext& m_context;
    const Options& m_options;
    const FileReader& m_first;
    nuo::zrfx::File m_file;
    std::vector<int> m_newStates;
};

int merge(ToolContext& context, const Options& options) {
    if (options.files.size() < 2) {
        context.fail("merge", "there is nothing to put together with one file");
        return ToolContext::WRONG_USAGE;
    }
    FileReader first(context);
    if (!first.open(options.files.front()) || !onlyDatabase(context, first)) {
        return ToolContext::FAILURE;
    }
    OutputFile output(options.out);
    std::string error;
    if (!output.prepare(&error)) return context.fail(options.out, error);
    std::error_code code;
    std::filesystem::copy_file(options.files.front(), output.temporaryPath(),
                               std::filesystem::copy_options::overwrite_existing, code);
    if (code) return context.fail(options.out, code.message());
    if (!Merging(context, options, first).run(output.temporaryPath())) return ToolContext::FAILURE;
    if (!output.finish(&error)) return context.fail(options.out, error);
    return ToolContext::FINE;
}

}  // namespace

void addMergeCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        context.addCommand(application, "merge",
                           "Puts the states of a continued run, or the parts of a model, together",
                           kExamples, [&context, options] { return merge(context, *options); });
    command->add_option("FILE", options->files, "ZRFx files; the first one is added to")
        ->required();
    command
        ->add_option("-o,--output", options->out, "The file to write, which may be the first one")
        ->type_name("OUT")
        ->required();
}

}  // namespace tools
