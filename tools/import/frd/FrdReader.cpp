#include "import/frd/FrdReader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "import/frd/FrdBinaryForm.h"
#include "import/frd/FrdText.h"
#include "import/frd/FrdTextForm.h"

namespace tools {
namespace {

constexpr std::size_t kMostComponents = 1000;  // the solver writes up to 60
constexpr std::uint64_t kAtElements = 3;       // as the file says where a result has its values
// How the numbers of a block are written, as its head says.
enum Form : int { SHORT_TEXT = 0, LONG_TEXT = 1, FLOATS = 2, DOUBLES = 3 };

constexpr const char* kUnknownForm = "the form of its numbers is not known";

// The key of the first line of a block is five columns and a letter.
bool isBlock(std::string_view line, std::string_view key) {
    return line.size() >= 6 && line.starts_with(key);
}

bool isEnd(std::string_view line) {
    return line.starts_with(" 9999");
}

bool isStartOfBlock(std::string_view line) {
    return isEnd(line) || isBlock(line, "    1P") || isBlock(line, "  100C") ||
           isBlock(line, "    2C") || isBlock(line, "    3C");
}

std::uint64_t numberOf(std::string_view field) {
    int number = 0;
    return readFrdInteger(field, &number) && number > 0 ? number : 0;
}

// Of items, in the head of a block.
std::uint64_t countIn(std::string_view head) {
    return numberOf(frdField(head, 24, 12));
}

std::unique_ptr<FrdForm> makeForm(int number, FrdContent& content) {
    switch (number) {
        case SHORT_TEXT:
            return std::make_unique<FrdTextForm>(content, FrdTextForm::SHORT);
        case LONG_TEXT:
            return std::make_unique<FrdTextForm>(content, FrdTextForm::LONG);
        case FLOATS:
            return std::make_unique<FrdBinaryForm>(content, FrdBinaryForm::FLOATS);
        case DOUBLES:
            return std::make_unique<FrdBinaryForm>(content, FrdBinaryForm::DOUBLES);
        default:
            return nullptr;
    }
}

}  // namespace

bool FrdReader::isFinished() const {
    constexpr std::size_t kLongestEnd = 128;  // with blanks up to the width of a line
    const std::string end = m_content.file.lastBytes(kLongestEnd);
    const std::size_t last = end.find_last_not_of("\r\n");
    const std::size_t before = end.rfind('\n', last);
    return last != std::string::npos && isEnd(std::string_view(end).substr(before + 1));
}

FrdReader::Event FrdReader::next() {
    m_isBetweenBlocks = true;
    m_hasBegun = false;
    const bool isThere = !m_isSkipping || findNextBlock();
    m_begin = m_content.file.place();
    if (m_isLost) return END;
    if (!isThere) return outOfData();
    const Event event = read();
    m_isSkipping = event == DAMAGE;
    // In a binary file nothing says where a next block might begin.
    m_isLost |= m_isSkipping && m_isBinary;
    if (m_isSkipping) m_content.file.unreadLine(m_begin);
    return event;
}

FrdReader::Event FrdReader::read() {
    while (const auto found = m_content.file.readLine()) {
        const std::string line(*found);
        m_isBetweenBlocks = false;
        if (isBlock(line, "    2C")) return readNodes(line);
        if (isBlock(line, "    3C")) return readElements(line);
        if (isBlock(line, "  100C")) return readResult(line);
        if (isEnd(line)) return END;
        if (isBlock(line, "    1U")) {
            readUserLine(line);
        } else if (isBlock(line, "    1P")) {
            readParameterLine(line);
        } else if (!isBlock(line, "    1C") && !frdTrimmed(line).empty()) {
            m_block.clear();
            return damaged("this is no line of a CalculiX result file");
        }
        m_begin = m_content.file.place();
        m_isBetweenBlocks = true;
    }
    return isEnd(m_content.file.unfinishedLine()) ? END : outOfData();
}

std::string FrdReader::placeText() const {
    return m_isBinary
               ? "byte " + std::to_string(m_content.file.place().offset)
               : "line " +
                     std::to_string(std::max<std::uint64_t>(m_content.file.place().line, 2) - 1);
}

FrdReader::Event FrdReader::damaged(const std::string& reason) {
    m_damage = placeText() + ": " + (m_block.empty() ? "" : m_block + ": ") + reason;
    return DAMAGE;
}

FrdReader::Event FrdReader::outOfData() {
    if (m_content.file.hasFailed()) {
        m_isLost = true;
        return damaged(std::string("cannot be read: ") + std::strerror(errno));
    }
    m_damage = placeText() + ": the file ends " +
               (m_isBetweenBlocks ? "without its end marker" : "within " + m_block);
    m_content.file.returnTo(m_begin);
    return INCOMPLETE;
}

bool FrdReader::findNextBlock() {
    while (const auto line = m_content.file.peekLine()) {
        if (isStartOfBlock(*line)) return true;
        m_content.file.readLine();
    }
    return false;
}

void FrdReader::readUserLine(std::string_view line) {
    const std::string text(frdTrimmed(frdField(line, 6, 66)));
    const auto valueOf = [&](std::string_view key) {
        return text.starts_with(key) ? std::string(frdTrimmed(text.substr(key.size())))
                                     : std::string();
    };
    const auto append = [](std::string& target, const std::string& value) {
        if (!value.empty()) target += (target.empty() ? "" : " ") + value;
    };
    append(m_content.header.program, valueOf("PGM"));
    append(m_content.header.program, valueOf("VERSION"));
    append(m_content.header.date, valueOf("DATE"));
    append(m_content.header.date, valueOf("TIME"));
    int material = 0;
    if (text.starts_with("MAT") && readFrdInteger(frdField(line, 9, 5), &material)) {
        m_content.header.materialNames[material] = frdTrimmed(frdField(line, 14, 58));
        return;
    }
    constexpr std::array kKeys{"USER",    "DATE",        "TIME", "HOST", "PGM",
                               "VERSION", "COMPILETIME", "DIR",  "DBN"};
    const bool isKnown = std::any_of(kKeys.begin(), kKeys.end(),
                                     [&](const char* key) { return text.starts_with(key); });
    if (!isKnown && m_content.header.title.empty()) m_content.header.title = text;
}

// Each state begins with the number of the step; what else is known of it follows.
void FrdReader::readParameterLine(std::string_view line) {
    const std::string_view key = frdTrimmed(frdField(line, 6, 6));
    int value = -1;
    if (key.starts_with("STEP")) {
        m_step = FrdStep();
        readFrdInteger(frdField(line, 36, 12), &m_step.increment);
        readFrdInteger(frdField(line, 48, 12), &m_step.step);
        return;
    }
    if (!readFrdInteger(frdField(line, 12, 60), &value) || value < 0) return;
    if (key == "HID") m_step.nodalDiameter = value;
    if (key == "MODE") m_step.mode = value;
}

std::unique_ptr<FrdForm> FrdReader::formOf(std::string_view head) {
    int number = 0;
    if (!readFrdInteger(frdField(head, 73, 2), &number)) return nullptr;
    m_isBinary |= number > LONG_TEXT;
    return makeForm(number, m_content);
}

FrdReader::Event FrdReader::eventOf(FrdForm::Outcome outcome, const FrdForm& form, Event whole) {
    if (outcome == FrdForm::DAMAGED) return damaged(form.reason());
    return outcome == FrdForm::WHOLE ? whole : outOfData();
}

FrdReader::Event FrdReader::readNodes(std::string_view line) {
    m_block = "the block of nodes";
    m_content.nodes = {};
    const auto form = formOf(line);
    if (!form) return damaged(kUnknownForm);
    return eventOf(form->readNodes(countIn(line)), *form, NODES);
}

FrdReader::Event FrdReader::readElements(std::string_view line) {
    m_block = "the block of elements";
    m_content.elements.clear();
    const auto form = formOf(line);
    if (!form) return damaged(kUnknownForm);
    return eventOf(form->readElements(countIn(line)), *form, ELEMENTS);
}

FrdReader::Event FrdReader::readResult(std::string_view line) {
    m_block = "a result";
    m_content.result.nodeIds.clear();
    m_content.result.values.clear();
    if (!readStep(line)) return damaged("its state cannot be read");
    const auto form = formOf(line);
    if (!form) return damaged(kUnknownForm);
    const std::uint64_t count = countIn(line);
    const Event event = readComponents();
    if (event != RESULT) return event;
    m_hasBegun = true;
    return eventOf(form->readValues(count), *form, RESULT);
}

bool FrdReader::readStep(std::string_view line) {
    FrdStep& step = m_content.result.step;
    step = m_step;
    step.analysisName = frdTrimmed(frdField(line, 63, 10));
    return readFrdDouble(frdField(line, 12, 12), &step.value) &&
           readFrdInteger(frdField(line, 56, 2), &step.analysis) &&
           readFrdInteger(frdField(line, 58, 5), &step.number);
}

// Components that viewers are to derive from the others, such as the length of a vector, have no
// values.
FrdReader::Event FrdReader::readComponents() {
    const auto head = m_content.file.readLine();
    if (!head) return outOfData();
    if (!isFrdItem(*head, "-4")) return damaged("its name is missing");
    FrdResult& result = m_content.result;
    result.name = frdTrimmed(frdField(*head, 5, 8));
    m_block = "the result " + result.name;
    const std::uint64_t count = numberOf(frdField(*head, 13, 5));
    if (numberOf(frdField(*head, 18, 5)) == kAtElements) {
        return damaged("its values are at elements, which is not imported");
    }
    if (count > kMostComponents) return damaged("it has too many components");
    result.components.clear();
    for (std::uint64_t i = 0; i < count; ++i) {
        const auto line = m_content.file.readLine();
        if (!line) return outOfData();
        if (!readComponent(*line)) return damaged("this is no component");
    }
    return result.components.empty() ? damaged("it has no components") : RESULT;
}

bool FrdReader::readComponent(std::string_view line) {
    FrdComponent component{std::string(frdTrimmed(frdField(line, 5, 8)))};
    int isDerived = 0;
    if (!isFrdItem(line, "-5") || !readFrdInteger(frdField(line, 18, 5), &component.kind) ||
        !readFrdInteger(frdField(line, 33, 5), &isDerived)) {
        return false;
    }
    if (isDerived == 0) m_content.result.components.push_back(component);
    return true;
}

}  // namespace tools
