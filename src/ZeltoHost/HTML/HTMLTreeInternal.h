// For sources only: brings in gumbo.
#pragma once

#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoHost/HTML/HTMLArena.h>

#include <gumbo.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// An HTML document as a browser parses it. Every input has one, in time linear in its length, and in memory
// of 24 MiB and three times its length. If that is too little, the tree has the text alone; if it is too
// little even for the text, the tree ends before the text does.
class HTMLTree {
  public:
    // `notes` gets what is not in the tree.
    explicit HTMLTree(std::string html, ContentNotes* notes = nullptr);

    // The html element.
    const GumboNode& root() const { return *root_; }

  private:
    bool parse(std::size_t byteLimit, double cpuSeconds);
    void parseTextAlone(ContentNotes* notes);

    std::string source_; // the nodes point into it
    std::unique_ptr<HTMLArena> arena_;
    const GumboNode* root_ = nullptr;
};

bool isHTMLElement(const GumboNode& node);

// nullptr if there is no such attribute.
const char* attributeOf(const GumboElement& element, const char* name);

std::string_view textOf(const GumboNode& node);
bool isTextNode(const GumboNode& node);
bool isElementNode(const GumboNode& node);

// Visits a node and its descendants without recursion: enter(node) says whether to visit the children, and
// leave(node) is called after them, for every element whose children were visited.
template <class Visitor> void walk(const GumboNode& from, Visitor&& visitor) {
    struct Step {
        const GumboNode* node;
        unsigned nextChild;
    };

    std::vector<Step> path;
    const auto enter = [&](const GumboNode& node) {
        if (visitor.enter(node) && isElementNode(node)) {
            path.push_back({&node, 0});
        }
    };
    enter(from);
    while (!path.empty()) {
        auto& [node, nextChild] = path.back();
        const auto& children = node->v.element.children;
        if (nextChild < children.length) {
            enter(*static_cast<const GumboNode*>(children.data[nextChild++]));
        } else {
            const auto* done = node;
            path.pop_back();
            visitor.leave(*done);
        }
    }
}

} // namespace zelto
