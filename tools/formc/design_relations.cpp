#include "design_relations.h"

#include "design_rows.h"

namespace velmora::formc {

namespace {

// The line of the design stands behind each, for whoever is told that the routine is missing.
void addAnswers(const Thing &thing, const std::string &target, const std::string &path,
                std::string &into) {
    for (const Setting &setting : thing.settings)
        if (setting.row->shape == Shape::Answer)
            into += "        " + target + "on()." + std::string(setting.row->call) +
                    " = [&answering](auto &&...event) { answering." + routineOf(thing, setting) +
                    "(event...); }; // src/" + path + ".form:" + std::to_string(setting.line) +
                    "\n";
}

} // namespace

std::string answersOf(const Design &design, const std::string &path) {
    std::string lines;
    addAnswers(design.form, "", path, lines);
    for (const Thing *thing : design.all())
        addAnswers(*thing, thing->name + ".", path, lines);
    return lines.empty() ? ""
                         : "\n    // Has the routines that the design names answer from now on.\n"
                           "    template <typename Answering> void wire(Answering &answering) {\n" +
                               lines + "    }\n";
}

Handed::Handed(const Design &design) : name_(design.form.name + "_Design") {
    for (const Thing *thing : design.all())
        add(*thing);
}

std::string Handed::parameter() const { return "const " + model_ + "_Design &model"; }

std::string Handed::declaration() const { return "    void takeSkin(" + parameter() + ");\n\n"; }

std::string Handed::definition() const {
    return "void " + name_ + "::takeSkin(" + parameter() + ") {\n" + statements_ + "}\n\n";
}

// What takes a picture is clickable, and takes the hand as well.
void Handed::add(const Thing &thing) {
    const Setting *picture = thing.find("picture");
    const Setting *pointer = thing.find("pointer");
    const bool takesPicture = picture != nullptr && !picture->fromForm.empty();
    if (!takesPicture && (pointer == nullptr || pointer->fromForm.empty()))
        return;
    model_ = takesPicture ? picture->fromForm : pointer->fromForm;
    if (takesPicture)
        statements_ +=
            "    " + thing.name + ".setPicture(model." + picture->fromImage + ".picture());\n";
    statements_ += "    skin::takeHand(" + thing.name + ", model);\n";
}

} // namespace velmora::formc
