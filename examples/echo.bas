Option Explicit
' Answers what is typed on the monitor port: each key comes back as it is
' typed, and at the end of a line the whole line (its first 16 characters,
' the project's string size).

Sub Main()
    Dim Typed As String
    Dim Key As Byte
    Dim LastWasReturn As Boolean
    Debug.Print "Type a line:"
    Do
        Key = GetByte()
        If Key = 13 Or Key = 10 Then
            ' CR LF is one line end, not two.
            If Not (Key = 10 And LastWasReturn) Then
                Debug.Print
                Debug.Print "You typed: "; Typed
                Typed = ""
            End If
            LastWasReturn = Key = 13
        Else
            PutByte Key
            Typed = Typed & Chr(Key)
            LastWasReturn = False
        End If
    Loop
End Sub
