// Connects the panels of the actions with the open documents.
#pragma once

namespace corvanta::studio {

class Workspace;

/// Set MainUI::EditorHooks: edits of panels become steps of their document, and panels see the
/// graph and the columns of the input pins. `workspace` must outlive all panels; resetEditorHooks()
/// ends the connection. Threads: the GUI thread.
void setEditorHooks(Workspace &workspace);
void resetEditorHooks();

} // namespace corvanta::studio
