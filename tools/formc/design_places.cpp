#include "design_places.h"

#include <array>
#include <sstream>

namespace velmora::formc {

namespace {

using Place = std::array<double, 4>;

void take(const Thing &thing, std::string_view property, Place &into, std::size_t first) {
    if (const Setting *given = thing.find(property))
        for (std::size_t i = 0; i < 2 && i < given->numbers.size(); ++i)
            into.at(first + i) = given->numbers[i];
}

void add(std::ostringstream &out, std::string_view name, const Place &place) {
    out << '"' << name << "\": [" << place[0] << ", " << place[1] << ", " << place[2] << ", "
        << place[3] << ']';
}

} // namespace

std::string writePlaces(const Design &design) {
    std::ostringstream out;
    Place place = {};
    take(design.form, "size", place, 2);
    out << '{';
    add(out, "form", place);
    for (const Thing &thing : design.form.children) {
        place = {};
        take(thing, "at", place, 0);
        take(thing, "size", place, 2);
        out << ",\n ";
        add(out, thing.name, place);
    }
    out << "}\n";
    return out.str();
}

} // namespace velmora::formc
