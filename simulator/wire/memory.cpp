#include "wire/memory.h"

#include <algorithm>

namespace sim {

void Memory::keep(const char* section, Save save, Load load) {
    sections_.push_back({section, std::move(save), std::move(load)});
}

void Memory::keep(const char* section, const std::vector<Number>& numbers) {
    const auto save = [numbers] {
        Json values;
        for (const Number& number : numbers) values[number.key] = number.value;
        return values;
    };
    keep(section, save, [numbers](const Request& request) {
        for (const Number& number : numbers) number.value = request.integer(number.key, number.low, number.high);
    });
}

Json Memory::saved() const {
    Json all = Json::object();
    for (const Section& section : sections_) all[section.name] = section.save();
    return all;
}

void Memory::load(const Json& sections) const {
    for (const Json::Member& member : sections.members()) {
        const auto is_it = [&](const Section& section) { return section.name == member.key; };
        if (std::none_of(sections_.begin(), sections_.end(), is_it)) throw Refusal("unknown section " + member.key);
    }
    const Request all(sections, "state");
    for (const Section& section : sections_) {
        if (all.has(section.name.c_str())) section.load(all.object(section.name.c_str()));
    }
}

}  // namespace sim
