#pragma once

// What a design says of its form's relations, as code: who answers its events, and what the skin
// hands out to it.

#include "design.h"

#include <string>

namespace velmora::formc {

// The member `wire` of the design whose file is src/PATH.form; empty when nobody answers.
std::string answersOf(const Design &design, const std::string &path);

// The member `takeSkin`.
class Handed {
public:
    explicit Handed(const Design &design);

    bool empty() const { return statements_.empty(); }  // nothing is handed out, there is none
    const std::string &model() const { return model_; } // the form that it is handed out from
    std::string declaration() const;
    std::string definition() const;

private:
    void add(const Thing &thing);
    std::string parameter() const;

    std::string name_;
    std::string model_;
    std::string statements_;
};

} // namespace velmora::formc
