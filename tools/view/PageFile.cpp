#include "view/PageFile.h"

#include "ViewPage.h"

namespace tools {
namespace {

// Within a script of data nothing but "<" could end it.
std::string escaped(const Json& json) {
    const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string safe;
    safe.reserve(text.size());
    for (const char c : text) c == '<' ? safe += "\\u003c" : safe += c;
    return safe;
}

}  // namespace

bool PageFile::isAvailable() {
    return !view::pageHead().empty();
}

bool PageFile::create(const std::string& path) {
    m_stream.open(path, std::ios::binary | std::ios::trunc);
    write(view::pageHead());
    return m_stream.good();
}

Json PageFile::add(std::span<const float> values, std::size_t components) {
    std::vector<std::uint16_t> numbers;
    Json ranges = Json::array();
    for (std::size_t c = 0; c < components; ++c) {
        const ScaledValues own = scaled(values, c, components);
        numbers.insert(numbers.end(), own.values.begin(), own.values.end());
        ranges.push_back({jsonNumber(own.min), jsonNumber(own.max)});
    }
    return {{"data", add(std::span<const std::uint16_t>(numbers))}, {"ranges", ranges}};
}

bool PageFile::finish(const Json& model) {
    write("<script type=\"application/json\" id=\"model\">");
    write(escaped(model));
    write("</script>\n");
    write(view::pageTail());
    m_stream.close();
    return m_stream.good();
}

void PageFile::write(std::string_view text) {
    m_stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    m_bytes += text.size();
}

Json PageFile::addPacked(const std::string& text) {
    write("<script type=\"text/plain\" id=\"data" + std::to_string(m_count) + "\">");
    write(text);
    write("</script>\n");
    return m_count++;
}

}  // namespace tools
