#include "ResultPageMaker.h"

#include <array>
#include <cstdint>

namespace quarry::bench {

namespace {

class PageMaker final {
public:
    explicit PageMaker(SearchService service) : _service(service) {}

    QByteArray make(qsizetype size)
    {
        addHead();
        _page += areaStart();
        while (_page.size() < size - 600) {
            addResult();
            addScript();
            addAside();
        }
        _page += "</ol></div><div id=\"foot\"><table class=\"nav\"><tr><td class=\"cur\">1</td><td>"
                 "<a href=\"/search?start=10&amp;sa=N\">2</a></td></tr></table></div></body></html>\n";
        return std::move(_page);
    }

private:
    std::uint32_t random()
    {
        _state = _state * 1664525U + 1013904223U;
        return _state >> 8;
    }
    QByteArray number() { return QByteArray::number(random()); }

    const char* word()
    {
        static constexpr std::array Words = {
            "sextant", "horizon", "the", "of",      "and",   "brass",      "index", "mirror",   "altitude",  "noon",
            "for",     "star",    "a",   "vernier", "scale", "sight",      "chart", "in",       "longitude", "frame",
            "arc",     "handle",  "to",  "shade",   "error", "navigation", "is",    "observer", "telescope", "limb",
        };
        return random() % 30 == 0 ? "déclinaison" : Words[random() % Words.size()];
    }
    QByteArray words(int count)
    {
        QByteArray text = word();
        for (int i = 1; i < count; ++i)
            text += QByteArray(" ") + word();
        return text;
    }

    void addHead()
    {
        _page += "<!DOCTYPE html>\n<html><head>\n<meta http-equiv=\"Content-Type\" content=\"text/html; "
                 "charset=UTF-8\">\n<title>brass sextant - search</title>\n<style>";
        for (int i = 0; i < 12; ++i)
            _page += ".c" + QByteArray::number(i) + "{margin:0 " + QByteArray::number(i) + "px;padding:2px}.c" +
                     QByteArray::number(i) + " a:hover>b{color:#1122cc}\n";
        _page += "</style></head>\n<body class=\"srp\" onload=\"go()\">\n<div id=\"top\"><ul>";
        for (int i = 0; i < 8; ++i)
            _page += "<li class=\"gbt\"><a class=\"gbzt\" href=\"http://tabs.example/" + words(1) + "?hl=en&amp;tab=w" +
                     QByteArray::number(i) + "\"><span class=\"gbts\">" + words(1) + "</span></a></li>";
        _page += "</ul></div>\n";
    }

    [[nodiscard]] QByteArray areaStart() const
    {
        switch (_service) {
        case SearchService::Google:
            return "<div id=\"cnt\"><div id=\"res\" class=\"med\"><ol>\n";
        case SearchService::Yahoo:
            return "<div id=\"main\"><div id=\"web\"><ol start=\"1\">\n";
        case SearchService::Bing:
            return "<div id=\"content\"><div id=\"results_container\"><ol class=\"sb_results\">\n";
        default:
            return "<div id='wrap'><div id='results'><ol>\n";
        }
    }

    void addScript()
    {
        _page += "<script type=\"text/javascript\">\n(function(){var _r=[];";
        for (int i = 0; i < 11; ++i)
            _page += "_r.push({id:" + number() + ",u:\"/url?sa=t&rct=j&cd=" + QByteArray::number(i) +
                     "\",f:function(a,b){if(a<b&&b>0){return \"<div class='x'>\"+a+\"</div>\"}return null}});\n";
        _page += "window.rr=_r})();</script>\n";
    }

    /// Advertisements, related searches: markup that holds no result.
    void addAside()
    {
        _page += "<div class=\"ads\" data-ved=\"0CB" + number() + "\"><!-- slot " + number() + ": " + words(8) +
                 " -->\n\t<ul class=\"rel\">\n";
        for (int i = 0; i < 6; ++i)
            _page += "\t\t<li class=\"rl\" style=\"width:" + QByteArray::number(40 + i) +
                     "%\"><div class=\"bx\"><a href=\"/aclk?sa=l&amp;ai=" + number() + number() +
                     "&amp;adurl=http://ads.example/" + number() + "\" onmousedown=\"return rwt(this,'" + number() +
                     "')\">" + words(2) + " <em>" + words(1) + "</em></a></div><span class=\"f\">" + words(5) +
                     "</span></li>\n";
        _page += "\t</ul>\n</div>\n";
    }

    void addResult()
    {
        const QByteArray host = words(1).replace("é", "e") + number() + ".example";
        const QByteArray address = "http://" + host + "/" + number() + "/page.html";
        const QByteArray title = words(2) + " <b>" + words(1) + "</b> &amp; " + words(3);
        QByteArray text = words(12) + " <b>sextant</b> " + words(6) + " &quot;" + words(2) + "&quot; " + words(4) +
                          " <em>" + words(2) + "</em>, " + words(7) + " &#39;" + words(1) + "&#39; <b>...</b>";
        const QByteArray shown = host + "/<wbr />" + number() + "/<b>page</b>.html";
        const QByteArray extras = "<div class=\"osl\"><div class=\"f\"><cite class=\"c\">" + shown +
                                  "</cite><span class=\"gl\"> - <div class=\"action\" role=\"button\" tabindex=\"0\" "
                                  "data-ved=\"0CC" +
                                  number() +
                                  "\" onclick=\"toggle(this,event)\"><span "
                                  "class=\"mn-dwn-arw\"></span></div><div class=\"dd\"><ul class=\"m\"><li "
                                  "class=\"mi\" role=\"menuitem\">" +
                                  words(2) + "</li><li class=\"mi\">" + words(1) +
                                  "</li></ul></div></span></div><div class=\"sl\"><span class=\"nobr\">" + words(2) +
                                  "</span>&nbsp;&middot; <span class=\"nobr\">" + words(3) + "</span></div></div>" +
                                  "<table class=\"ts\"><tr><td class=\"t1\" width=\"50%\">" + words(3) +
                                  "</td><td class=\"t2\">" + words(12) + "</td></tr></table>";
        addItem(address, title, text, extras);
    }

    void addItem(const QByteArray& address, const QByteArray& title, const QByteArray& text, const QByteArray& extras)
    {
        const QByteArray id = QByteArray::number(++_items);
        switch (_service) {
        case SearchService::Google:
            _page += "<li class=\"g\">\n<div class=\"vsc\" sig=\"" + number() +
                     "\"><h3 class=\"r\"><a href=\"/url?q=" + address + "&amp;sa=U&amp;ved=0CB" + number() +
                     "\" class=\"l\" onmousedown=\"return rwt(this)\">" + title + "</a></h3>" + extras +
                     "<div class=\"s\">" + text + "</div></div></li>\n";
            break;
        case SearchService::Yahoo:
            _page += "<li class=\"w\">\n<div class=\"res\"><div class=\"hd\"><h3><a class=\"yschttl spt\" href=\"" +
                     address + "\" data-bk=\"5054." + id + "\">" + title + "</a></h3></div>" + extras +
                     "<div class=\"abstr\">" + text + "</div></div></li>\n";
            break;
        case SearchService::Bing:
            _page += "<li class=\"sa_wr\">\n<div class=\"sa_cc\"><div class=\"sb_tlst\"><h3><a href=\"" + address +
                     "\" onmousedown=\"return si_T('&amp;ID=SERP," + id + "')\">" + title + "</a></h3></div><p>" +
                     text + "</p>" + extras + "</div></li>\n";
            break;
        default:
            _page += "<li class='w'>\n<div class='result'><h3><a id='title_" + id + "' href='" + address + "'>" +
                     title + "</a></h3>" + extras + "<p class='desc'>" + text + "</p></div></li>\n";
        }
    }

    SearchService _service;
    QByteArray _page;
    std::uint32_t _state = 20260101;
    int _items = 0;
};

} // namespace

QByteArray makeResultPage(SearchService service, qsizetype size)
{
    return PageMaker(service).make(size);
}

} // namespace quarry::bench
