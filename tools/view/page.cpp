// Each file of the bundle becomes a part of the program's constants, by the assembler.
#include "view/page.h"

#define ZK_PAGE_FILE(name, file)                                                                               \
    asm(".pushsection .rodata\n.global zk_page_" #name "\nzk_page_" #name ":\n.incbin \"" ZK_PAGE_DIR "/" file \
        ".gz\"\n.global zk_page_" #name "_end\nzk_page_" #name "_end:\n.byte 0\n.popsection\n");               \
    extern "C" const char zk_page_##name[], zk_page_##name##_end[]

#ifdef ZK_PAGE_DIR
#include "page_stamp.h"
ZK_PAGE_FILE(html, "index.html");
ZK_PAGE_FILE(script, "app.js");
ZK_PAGE_FILE(style, "app.css");
ZK_PAGE_FILE(licences, "licences.txt");

namespace {
std::string_view between(const char* begin, const char* end) { return {begin, static_cast<std::size_t>(end - begin)}; }
}  // namespace

const zk::view::PageFile zk::view::kPage[] = {
    {"/", "text/html; charset=utf-8", between(zk_page_html, zk_page_html_end)},
    {"/app.js", "text/javascript; charset=utf-8", between(zk_page_script, zk_page_script_end)},
    {"/app.css", "text/css; charset=utf-8", between(zk_page_style, zk_page_style_end)},
    {"/licences.txt", "text/plain; charset=utf-8", between(zk_page_licences, zk_page_licences_end)},
    {}};
#else
const zk::view::PageFile zk::view::kPage[] = {{}};
#endif
