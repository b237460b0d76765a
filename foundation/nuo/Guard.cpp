#include "nuo/Guard.h"

#include <exception>
#include <new>
#include <stdexcept>

#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace nuo {
namespace {

// A destination that itself runs out of memory cannot take the message of that.
void report(const nvf::SourceLocation& where, const char* text) {
    if (nvf::Logger::isEmitting()) return nvf::Logger::writeLine(text);
    nvf::interfaceLogger()->fail({"%1", where}, text);
}

}  // namespace

void reportCaught(const nvf::SourceLocation& where) {
    try {
        throw;
    } catch (const nvf::AssertException&) {
        throw;
    } catch (const std::bad_alloc&) {
        report(where, "Out of memory.");
    } catch (const std::length_error&) {
        report(where, "Out of memory.");
    } catch (const std::exception& exception) {
        report(where, exception.what());
    } catch (...) {
        report(where, "Unknown exception.");
    }
}

}  // namespace nuo
