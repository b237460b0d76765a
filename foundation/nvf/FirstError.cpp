#include "nvf/FirstError.h"

#include <new>

namespace nvf {
namespace {

thread_local FirstError* t_current = nullptr;

}  // namespace

FirstError::FirstError(Reason usual) : m_usual(usual), m_outer(t_current) {
    t_current = this;
}

FirstError::~FirstError() {
    t_current = m_outer;
}

bool FirstError::isAwaited() {
    return t_current && t_current->m_reason == Reason::NONE;
}

void FirstError::note(Reason reason, const String& text) noexcept {
    if (!isAwaited()) return;
    t_current->m_reason = reason == Reason::NONE ? t_current->m_usual : reason;
    try {
        t_current->m_text = text;
    } catch (const std::bad_alloc&) {
        t_current->m_text = String();
    }
}

}  // namespace nvf
