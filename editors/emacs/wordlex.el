;;; wordlex.el --- Wordlex dictionaries with eglot -*- lexical-binding: t -*-

(require 'eglot)

(define-derived-mode wordlex-mode text-mode "Wordlex"
  "Major mode for Wordlex dictionaries.")

(add-to-list 'auto-mode-alist '("\\.wordlex\\'" . wordlex-mode))
(add-to-list 'auto-mode-alist '("/dictionaries/[^/]+\\.txt\\'" . wordlex-mode))
(add-to-list 'eglot-server-programs '(wordlex-mode . ("wordlex" "lsp")))
(add-hook 'wordlex-mode-hook #'eglot-ensure)

(provide 'wordlex)
