#pragma once

#include <QTextEdit>

/// A read-only text box that ends below a whole line: a text that is longer than the box is scrolled into
/// view, and no line is seen cut in half while the text stands at its beginning. GUI thread only.
class WholeLinesEdit : public QTextEdit {
public:
    /// Its last \a clear pixels stay free while the text is longer than the box.
    WholeLinesEdit(QWidget *parent, int clear);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void endBelowWholeLine();

    const int m_clear;
};
