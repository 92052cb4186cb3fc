#include "include/vornak_host.h"

#include "base/descriptor.h"
#include "base/open_to_read.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace {

using vornak::Descriptor;

// White space in attribute values stays as it is written.
constexpr unsigned kParseFlags = pugi::parse_escapes | pugi::parse_eol;

struct Document {
    pugi::xml_document tree;
    std::string text; // the tree's names and values lie in it
    int nodes = 0;    // that refer to it

    pugi::xml_parse_status read(const char *path);
    pugi::xml_parse_status parse();
};

ssize_t readRetrying(int file, char *to, std::size_t size)
{
    ssize_t got;
    do got = read(file, to, size);
    while (got < 0 && errno == EINTR);
    return got;
}

pugi::xml_parse_status Document::read(const char *path)
{
    const Descriptor file(vornak::openToRead(path));
    if (!file) return errno == ENOENT ? pugi::status_file_not_found : pugi::status_io_error;
    struct stat info;
    if (fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return pugi::status_io_error;

    std::size_t length = 0;
    text.resize(static_cast<std::size_t>(info.st_size) + 1); // one more, to see the end
    while (true) {
        const ssize_t got = readRetrying(file.get(), text.data() + length, text.size() - length);
        if (got < 0) return pugi::status_io_error;
        if (got == 0) break;
        length += static_cast<std::size_t>(got);
        if (length == text.size()) text.resize(2 * length);
    }
    text.resize(length);
    return pugi::status_ok;
}

pugi::xml_parse_status Document::parse()
{
    const auto status = tree.load_buffer_inplace(text.data(), text.size(), kParseFlags).status;
    if (status == pugi::status_out_of_memory) throw std::bad_alloc();
    return status;
}

/// Finds children by name and index; a search goes on from the child found last where it can.
class ChildFinder {
public:
    pugi::xml_node find(pugi::xml_node parent, const char *name, int index)
    {
        if (index < index_ || std::strcmp(last_.name(), name) != 0) {
            last_ = parent.child(name);
            index_ = 0;
        }
        for (; last_ && index_ < index; ++index_) last_ = last_.next_sibling(name);
        return last_;
    }

private:
    pugi::xml_node last_;
    int index_ = 0;
};

} // namespace

/// What the copies of one handle share.
struct XMLNode::Data {
    Data(Document *in, pugi::xml_node at) noexcept : document(in), node(at) { ++document->nodes; }
    ~Data()
    {
        if (--document->nodes == 0) delete document;
    }
    Data(const Data &) = delete;
    Data &operator=(const Data &) = delete;

    Document *document;
    pugi::xml_node node;
    ChildFinder children;
    int handles = 1;
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
    auto document = std::make_unique<Document>();
    auto status = path ? document->read(path) : pugi::status_file_not_found;
    if (status == pugi::status_ok) status = document->parse();
    if (error) *error = status;
    if (status != pugi::status_ok) return {};

    const XMLNode root(new Data(document.get(), document->tree));
    static_cast<void>(document.release()); // now its nodes' to delete
    return tag ? root.getChildNode(tag) : root;
}

XMLNode XMLNode::getChildNode(const char *name, int index) const
{
    if (isEmpty() || !name || index < 0) return {};
    const pugi::xml_node child = data_->children.find(data_->node, name, index);
    return child ? XMLNode(new Data(data_->document, child)) : XMLNode();
}

bool XMLNode::isEmpty() const noexcept
{
    return data_ == nullptr;
}

int XMLNode::nChildNode(const char *name) const
{
    if (isEmpty() || !name) return 0;
    int count = 0;
    for (auto child = data_->node.child(name); child; child = child.next_sibling(name)) ++count;
    return count;
}

const char *XMLNode::getAttribute(const char *name, int index) const
{
    if (isEmpty() || !name || index < 0) return nullptr;
    pugi::xml_attribute found = data_->node.attribute(name);
    while (found && index > 0) {
        found = found.next_attribute();
        if (std::strcmp(found.name(), name) == 0) --index;
    }
    return found ? found.value() : nullptr;
}

const char *XMLNode::getAttribute(const char *name, int *iterator) const
{
    const char *value = getAttribute(name, iterator ? *iterator : 0);
    if (value && iterator) ++*iterator;
    return value;
}
