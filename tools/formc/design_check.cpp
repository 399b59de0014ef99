#include "design_parts.h"
#include "names.h"

#include <algorithm>

namespace velmora::formc {

namespace {

class Checker {
public:
    explicit Checker(Design &design) : design_(design) {}

    void run() {
        checkName(design_.form);
        checkRequired(design_.form);
        checkNames();
        for (const Thing *thing : design_.all()) {
            checkName(*thing);
            checkRequired(*thing);
        }
        checkInside(design_.form);
        for (const Thing *thing : design_.all())
            checkBonds(*thing);
        checkAnswers(design_.form);
        for (const Thing *thing : design_.all())
            checkAnswers(*thing);
    }

private:
    void fault(int line, std::string text) { design_.faults.push_back({line, std::move(text)}); }

    void checkName(const Thing &thing) {
        if (thing.name.empty())
            return; // reported where it was read
        if (std::string bad = faultOfName(thing.name); !bad.empty())
            fault(thing.line, std::move(bad));
    }

    void checkNames() {
        std::map<std::string_view, int> lines{{design_.form.name, design_.form.line}};
        for (const Thing *thing : design_.all()) {
            const auto [first, isNew] = lines.try_emplace(thing->name, thing->line);
            if (!isNew && !thing->name.empty())
                fault(thing->line, "the name '" + thing->name + "' stands on line " +
                                       std::to_string(first->second) + " already");
        }
    }

    void checkRequired(const Thing &thing) {
        const KindSet kind = thing.kind->bit;
        if ((kind & (kinds::boxed | kinds::form)) != 0 && !thing.has("size"))
            fault(thing.line, "'" + thing.name + "' has no size");
        if ((kind & kinds::boxed) != 0 && !thing.has("at"))
            fault(thing.line, "'" + thing.name + "' has no place ('at')");
        if ((kind & kinds::line) != 0 && !thing.has("ends"))
            fault(thing.line, "'" + thing.name + "' has no ends");
        if (thing.has("opaque") && thing.has("transparent"))
            fault(thing.line, "'" + thing.name + "' is both opaque and transparent");
        if (kind == kinds::form && thing.has("pointer") && thing.find("pointer")->word == "hand")
            fault(thing.line, "a form has no hand pointer");
        if (thing.has("line") && thing.has("text"))
            fault(thing.line, "'" + thing.name + "' has both a text and lines");
        if (thing.has("line") && !thing.has("multiline"))
            fault(thing.line, "'" + thing.name + "' has lines but is not multiline");
        if (thing.has("separator") && thing.has("click"))
            fault(thing.line, "the separator '" + thing.name + "' cannot be clicked");
        if (const Setting *picture = thing.find("picture");
            picture != nullptr && !picture->fromForm.empty() && kind != kinds::image)
            fault(picture->line, "the skin hands pictures to images alone");
        if (thing.has("separator") && !thing.children.empty())
            fault(thing.line, "the separator '" + thing.name + "' has entries");
    }

    void checkBonds(const Thing &thing) {
        for (const Setting &setting : thing.settings) {
            if (setting.row->shape != Shape::Control || setting.word.empty())
                continue;
            const auto all = design_.all();
            const bool isThere = std::ranges::any_of(all, [&](const Thing *other) {
                return other != &thing && other->name == setting.word &&
                       (other->kind->bit & kinds::boxed) != 0;
            });
            if (!isThere)
                fault(setting.line, "'" + std::string(setting.row->word) + "': no other control '" +
                                        setting.word + "' in this form");
        }
    }

    void checkAnswers(const Thing &thing) {
        for (const Setting &setting : thing.settings) {
            if (setting.row->shape != Shape::Answer)
                continue;
            const std::string routine = routineOf(thing, setting);
            for (const Thing *other : design_.all())
                if (other->name == routine)
                    fault(setting.line, "'" + std::string(setting.row->word) + "': '" + routine +
                                            "' is the control of line " +
                                            std::to_string(other->line));
        }
    }

    // The numbers of a well-formed setting; null when it is missing or malformed.
    static const std::vector<double> *numbers(const Thing &thing, std::string_view property,
                                              std::size_t count) {
        const Setting *setting = thing.find(property);
        return setting != nullptr && setting->numbers.size() == count ? &setting->numbers : nullptr;
    }

    void checkInside(const Thing &container) {
        const auto *size = numbers(container, "size", 2);
        for (const Thing &child : container.children) {
            if (size != nullptr)
                checkChild(container, child, (*size)[0], (*size)[1]);
            checkInside(child);
        }
    }

    void checkChild(const Thing &container, const Thing &child, double width, double height) {
        const auto outside = [&](double left, double top, double right, double bottom) {
            if (left < 0 || top < 0 || right > width || bottom > height)
                fault(child.line, "'" + child.name + "' lies outside '" + container.name + "'");
        };
        if (const auto *ends = numbers(child, "ends", 4)) {
            const auto &e = *ends;
            outside(std::min(e[0], e[2]), std::min(e[1], e[3]), std::max(e[0], e[2]),
                    std::max(e[1], e[3]));
        }
        const auto *at = numbers(child, "at", 2);
        const auto *size = numbers(child, "size", 2);
        if (at != nullptr && size != nullptr)
            outside((*at)[0], (*at)[1], (*at)[0] + (*size)[0], (*at)[1] + (*size)[1]);
    }

    Design &design_;
};

} // namespace

void checkDesign(Design &design) { Checker(design).run(); }

} // namespace velmora::formc
