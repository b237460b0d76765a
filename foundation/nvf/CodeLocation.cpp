#include "nvf/CodeLocation.h"

#include <string_view>

namespace nvf {
namespace {

// "bool nuo::zrfx::File::open(const nuo::Str&)" gives "nuo::zrfx::File::open", as does a lambda in
// it. The compiler's notes in brackets after a template's signature, and all template arguments,
// are left out.
std::string qualifiedName(std::string_view signature) {
    signature = signature.substr(0, signature.find(" [with "));
    signature = signature.substr(0, signature.find("::<lambda"));
    std::string name;
    int depth = 0;
    for (const char c : signature.substr(0, signature.rfind('('))) {
        if (c == '<' || c == '(') ++depth;
        if (depth == 0) name += c;
        if (c == '>' || c == ')') --depth;
    }
    return name.substr(name.find_last_of(" *&") + 1);
}

}  // namespace

CodeLocation::CodeLocation(const SourceLocation& where)
    : CodeLocation(where.file_name(), qualifiedName(where.function_name()), where.function_name(),
                   static_cast<int>(where.line())) {}

CodeLocation::CodeLocation(const String& file, const String& function, const String& prettyFunction,
                           int line)
    : fileName(file),
      functionName(function),
      prettyFunctionName(prettyFunction),
      lineNumber(line) {}

}  // namespace nvf
