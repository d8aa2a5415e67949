#pragma once

#include "app/ContentView.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

namespace vellmora::test {

class ContentViewTest : public testing::Test {
protected:
    QString status() const { return content.statusText; }
    StampLibrary& library() { return content.stampLibrary(); }
    QUrl writePdf(const char* name, int pageCount = 3) {
        writeFile(workspace.path(QString::fromUtf8(name)), pages(pageCount).bytes());
        return workspace.url(QString::fromUtf8(name));
    }
    StampPreset import(const char* name, const QByteArray& png = plainPng(400, 100, Qt::red)) {
        writeFile(workspace.path(QString::fromUtf8(name)), png);
        return library().importPreset(workspace.url(QString::fromUtf8(name)));
    }
    void drop(const QList<QUrl>& urls) {
        EXPECT_TRUE(content.handlePDFDrop(urls));
        settle();
    }
    QList<StampItem> stampsOn(qsizetype page) const { return content.stampsByPage.value().value(page); }

    TestWorkspace workspace;
    ContentView content{workspace.makeLibrary(), workspace.panels, documentProcesses()};
};

}  // namespace vellmora::test
