/**
 * What the host of libvornak provides. The library leaves these symbols undefined and takes
 * the first definition that the process offers, the program's own before any library's.
 * libvornak_platform.so defines them all, for hosts that have nothing of their own.
 *
 * What a program that links the library defines is exported by the linker. One that opens it by
 * dlopen() must be linked with -rdynamic: else libvornak_platform.so, where it is loaded, answers
 * in the program's place, and nothing says so. LD_DEBUG=bindings in the environment makes the
 * dynamic linker name whose CodecNameToID is taken.
 *
 * The registry's functions return 0 on success and any other value for a name or id that they
 * do not know. They may be called from several threads at once. None of them may throw.
 */
#ifndef VORNAK_HOST_H
#define VORNAK_HOST_H

#if defined(__GNUC__)
#define VORNAK_HOST_API __attribute__((visibility("default")))
#else
#define VORNAK_HOST_API
#endif

/** Bytes of the buffers that the library lends to the names of ids, the NUL included. */
#define VORNAK_NAME_SIZE 64

/* The names of ids carry a prefix of a fixed length, which the library skips. */
#define VORNAK_CODEC_PREFIX 9     /* characters before a codec's name */
#define VORNAK_CONTAINER_PREFIX 7 /* characters before a container's name */
#define VORNAK_SUBTYPE_PREFIX 6   /* characters before a subtype's name */

/** Bytes of the buffer that Telmo_stringConvert2SystemCmdFilename() rewrites. */
#define VORNAK_SHELL_NAME_SIZE 1024

/** What stands before the number in the path of a mount point. */
#define VORNAK_MOUNT_PREFIX "/tmp/Trans_mount_"

#ifdef __cplusplus
extern "C" {
#endif

/** Not 0: the library traces its decisions on standard error. */
extern VORNAK_HOST_API int g_debug_level;

/* Names to ids. `name` is not null; the id is written on success only. */

/** A codec's id; 0 is the wildcard, above 0 a codec; -1 counts as unknown. */
VORNAK_HOST_API int CodecNameToID(const char *name, int *id);

/** The bit of a codec profile; it is ORed with others. */
VORNAK_HOST_API int ProfileNameToID(const char *name, int *bit);

/** The bit of a play exception; it is ORed with others. */
VORNAK_HOST_API int PlayExceptionNameToID(const char *name, int *bit);

/** A container's id, with the number of `subtype` in its high 16 bits. @param subtype null or
 *  empty: none */
VORNAK_HOST_API int ContainerFormatNameToID(const char *name, const char *subtype, int *id);

/* Ids to names, each written into a buffer of VORNAK_NAME_SIZE bytes that arrives cleared. */

/** VORNAK_CODEC_PREFIX characters and the codec's name. */
VORNAK_HOST_API int CodecIDToName(char *name, int id);

/** The name of a codec profile, without any prefix. @param profile one bit, or a set of them:
 *  the registry chooses one name */
VORNAK_HOST_API int ProfileIDToName(char *name, int profile, int codecId);

/** VORNAK_CONTAINER_PREFIX characters and the container's name; and for an id with a subtype
 *  VORNAK_SUBTYPE_PREFIX characters and the subtype's, else the empty text. */
VORNAK_HOST_API int ContainerFormatIDToName(char *name, char *subtype, int id);

/**
 * Rewrites a file name in place into what a shell command line reads back as a name of that
 * file, also where two such texts stand side by side, as a folder that ends in "/" and a name in
 * it do. No command may take it for an option: the stand-in host puts "./" before a name that
 * begins with a dash, and before one that mount would look up as a device's LABEL=. A name that
 * needs neither that nor quotes stays as it is.
 * @param name  a buffer of VORNAK_SHELL_NAME_SIZE bytes
 * @return 0, or another value, and the buffer unchanged, when the result would not fit
 */
VORNAK_HOST_API int Telmo_stringConvert2SystemCmdFilename(char *name);

/**
 * The number of a new mount point, 0 or more: one that this process has not been given before,
 * that nobody can guess, and with which there is nothing at VORNAK_MOUNT_PREFIX, not even a link
 * that leads nowhere. Any number of threads may call it. Numbers repeat after 2^31 calls; two
 * processes that call at the same moment are given the same one once in 2^31 times.
 */
VORNAK_HOST_API int Telmo_getUniqueNumer(void);

/** Whether `text` begins with `word`; *result is written in any case, not 0 for yes. */
VORNAK_HOST_API void mystrcmp2(const char *text, const char *word, int *result);

#ifdef __cplusplus
} /* extern "C" */

/**
 * A node of an XML document. A handle is a value of one pointer; copies share the document,
 * which lives as long as any handle into it. Handles into one document belong to one thread.
 * Texts that it hands out are UTF-8, unless the file holds bytes that are not, and live as
 * long as the document. What runs out of memory throws std::bad_alloc.
 */
class VORNAK_HOST_API XMLNode {
public:
    XMLNode() noexcept = default;
    XMLNode(const XMLNode &other) noexcept;
    XMLNode(XMLNode &&other) noexcept;
    XMLNode &operator=(const XMLNode &other) noexcept;
    XMLNode &operator=(XMLNode &&other) noexcept;
    ~XMLNode();

    /**
     * Parses a file.
     * @param error  receives 0, or another value for a file that is unreadable or not
     *               well-formed; may be null
     * @param tag    the child of the document to return; null: the document's root, whose
     *               children are the top-level elements
     * @return the node, empty after an error
     */
    static XMLNode openFileHelper(const char *path, int *error, const char *tag = nullptr);

    /** The child element of that name at `index` among its namesakes, or the empty node.
     *  Taking them in the order of their index costs constant time each. */
    XMLNode getChildNode(const char *name, int index = 0) const;

    /** The number of child elements of that name. */
    int nChildNode(const char *name) const;

    /** The value of the attribute at `index` among those of that name, or null. References in
     *  it are resolved; white space stays as it is written. */
    const char *getAttribute(const char *name, int index) const;

    /** The same with an index that moves on: *iterator counts from 0 and is raised by each
     *  call that finds one. Null: the first attribute of that name. */
    const char *getAttribute(const char *name, int *iterator = nullptr) const;

    /** Whether this is no node at all. */
    bool isEmpty() const noexcept;

    /** The empty node. */
    static const XMLNode emptyXMLNode;

private:
    struct Data;
    explicit XMLNode(Data *data) noexcept : data_(data) {}

    Data *data_ = nullptr;
};
#endif

#endif /* VORNAK_HOST_H */
