// XMLNode over an XML library of the program's choice. vornak_host.h has the class; what `Data`
// is, is for whoever implements it.
#include <vornak_host.h>

#include <cstring>
#include <memory>
#include <pugixml.hpp>
#include <utility>

struct XMLNode::Data {
    std::shared_ptr<pugi::xml_document> document; // lives as long as any node of it
    pugi::xml_node node;
    int handles = 1;
    pugi::xml_node last = {}; // the child found last, so that children in order are found at once
    int lastIndex = 0;
};

const XMLNode XMLNode::emptyXMLNode;

XMLNode::XMLNode(const XMLNode &other) noexcept : data_(other.data_)
{
    if (data_) ++data_->handles;
}

XMLNode::XMLNode(XMLNode &&other) noexcept : data_(std::exchange(other.data_, nullptr))
{}

XMLNode &XMLNode::operator=(const XMLNode &other) noexcept
{
    return *this = XMLNode(other);
}

XMLNode &XMLNode::operator=(XMLNode &&other) noexcept
{
    std::swap(data_, other.data_);
    return *this;
}

XMLNode::~XMLNode()
{
    if (data_ && --data_->handles == 0) delete data_;
}

XMLNode XMLNode::openFileHelper(const char *path, int *error, const char *tag)
{
    auto document = std::make_shared<pugi::xml_document>();
    const auto result = document->load_file(path, pugi::parse_escapes | pugi::parse_eol);
    if (error) *error = result.status;
    if (!result) return {};
    const XMLNode root(new Data{document, *document});
    return tag ? root.getChildNode(tag) : root;
}

XMLNode XMLNode::getChildNode(const char *name, int index) const
{
    if (!data_) return {};
    pugi::xml_node &child = data_->last;
    int &at = data_->lastIndex;
    if (index < at || std::strcmp(child.name(), name) != 0) {
        child = data_->node.child(name);
        at = 0;
    }
    for (; child && at < index; ++at) child = child.next_sibling(name);
    return child ? XMLNode(new Data{data_->document, child}) : XMLNode();
}

int XMLNode::nChildNode(const char *name) const
{
    int count = 0;
    if (data_)
        for (auto child = data_->node.child(name); child; child = child.next_sibling(name)) ++count;
    return count;
}

const char *XMLNode::getAttribute(const char *name, int index) const
{
    if (!data_) return nullptr;
    for (const pugi::xml_attribute attribute : data_->node.attributes())
        if (std::strcmp(attribute.name(), name) == 0 && index-- == 0) return attribute.value();
    return nullptr;
}

const char *XMLNode::getAttribute(const char *name, int *iterator) const
{
    const char *value = getAttribute(name, iterator ? *iterator : 0);
    if (value && iterator) ++*iterator;
    return value;
}

bool XMLNode::isEmpty() const noexcept
{
    return !data_;
}
