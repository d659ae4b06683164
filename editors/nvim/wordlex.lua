-- Starts `wordlex lsp` for dictionaries and for the sources of a project with a wordlex.toml.
-- Neovim 0.7 or later.
local group = vim.api.nvim_create_augroup("wordlex", {})

vim.api.nvim_create_autocmd({ "BufRead", "BufNewFile" }, {
    group = group,
    pattern = { "*.wordlex", "*/dictionaries/*.txt" },
    callback = function() vim.bo.filetype = "wordlex" end,
})

local function root_of(name)
    local file = vim.fn.findfile("wordlex.toml", vim.fn.fnamemodify(name, ":p:h") .. ";")
    return file ~= "" and vim.fn.fnamemodify(file, ":p:h") or nil
end

local clients = {}  -- by root

vim.api.nvim_create_autocmd("FileType", {
    group = group,
    pattern = { "wordlex", "c", "cpp", "objc", "objcpp" },
    callback = function(event)
        local name = vim.api.nvim_buf_get_name(event.buf)
        local root = root_of(name)
        if not root and vim.bo[event.buf].filetype ~= "wordlex" then return end
        root = root or vim.fn.fnamemodify(name, ":p:h")
        clients[root] = clients[root] or vim.lsp.start_client({
            name = "wordlex",
            cmd = { "wordlex", "lsp" },
            root_dir = root,
            on_exit = function() clients[root] = nil end,
            on_attach = function(_, buffer)
                vim.bo[buffer].omnifunc = "v:lua.vim.lsp.omnifunc"
            end,
        })
        vim.lsp.buf_attach_client(event.buf, clients[root])
    end,
})
