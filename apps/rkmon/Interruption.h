#pragma once

#include <QTimer>

/// As long as it lives, Ctrl-C does not end the program at once: it cancels the requests under way, so that
/// the command can say what was done. A second Ctrl-C ends the program. One at a time.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Whether Ctrl-C came.
    bool isAsked() const;

private:
    QTimer m_timer; ///< a signal may do next to nothing by itself
    void (*m_earlier)(int);
};
