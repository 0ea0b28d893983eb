// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Names of functions. What a library exports the loader knows; of the others, which the panel's library keeps
// to itself, the file's own table tells.
#include "rig/watch/ThreadProbe.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <cxxabi.h>
#include <dlfcn.h>
#include <link.h>

#include <cstdlib>
#include <memory>

namespace rig {

namespace {

QString readable(const char *symbol)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(symbol, nullptr, nullptr, &status), &std::free);
    return QString::fromUtf8(status == 0 ? name.get() : symbol);
}

/// The functions that an ELF file names in its table for debuggers, if it was not stripped of it.
class FunctionTable {
public:
    explicit FunctionTable(const QString &path)
        : m_file(path)
    {
        if (m_file.open(QIODevice::ReadOnly))
            m_bytes = m_file.map(0, m_file.size());
        if (m_bytes)
            findTable();
    }

    const char *nameAt(quintptr address) const
    {
        for (const auto *symbol = m_begin; symbol != m_end; ++symbol) {
            const bool isFunction = (symbol->st_info & 0xF) == STT_FUNC;
            if (isFunction && address >= symbol->st_value && address < symbol->st_value + symbol->st_size)
                return m_names + symbol->st_name;
        }
        return nullptr;
    }

private:
    using Section = ElfW(Shdr);
    using Symbol = ElfW(Sym);

    template <typename T> const T *at(quintptr offset) const
    {
        return reinterpret_cast<const T *>(m_bytes + offset);
    }

    void findTable()
    {
        const auto *header = at<ElfW(Ehdr)>(0);
        const auto *sections = at<Section>(header->e_shoff);
        for (int number = 0; number < header->e_shnum; ++number) {
            const Section &section = sections[number];
            if (section.sh_type != SHT_SYMTAB)
                continue;
            m_begin = at<Symbol>(section.sh_offset);
            m_end = m_begin + section.sh_size / sizeof(Symbol);
            m_names = at<char>(sections[section.sh_link].sh_offset);
        }
    }

    QFile m_file;
    const uchar *m_bytes = nullptr;
    const Symbol *m_begin = nullptr;
    const Symbol *m_end = nullptr;
    const char *m_names = nullptr;
};

/// A return address is that of the next instruction, which may be the next function's.
void *inCall(void *address)
{
    return static_cast<char *>(address) - 1;
}

QString fileOf(const Dl_info &info)
{
    return QFile::decodeName(info.dli_fname);
}

QString unexportedFunctionAt(void *address, const Dl_info &info)
{
    const FunctionTable table(fileOf(info));
    const char *name = table.nameAt(quintptr(address) - quintptr(info.dli_fbase));
    return name ? readable(name) : QStringLiteral("?");
}

} // namespace

QString exportedFunctionAt(void *address)
{
    Dl_info info{};
    return dladdr(inCall(address), &info) && info.dli_sname ? readable(info.dli_sname) : QString();
}

QString describeAddress(void *address)
{
    Dl_info info{};
    if (!dladdr(inCall(address), &info))
        return QStringLiteral("?");
    const QString name
        = info.dli_sname ? readable(info.dli_sname) : unexportedFunctionAt(inCall(address), info);
    return QStringLiteral("%1  [%2]").arg(name, QFileInfo(fileOf(info)).fileName());
}

bool isSystemCode(void *address)
{
    Dl_info info{};
    if (!dladdr(inCall(address), &info))
        return true;
    const QString file = QFileInfo(fileOf(info)).canonicalFilePath();
    return file.isEmpty() || file.startsWith(QStringLiteral("/usr/lib/"));
}

} // namespace rig
