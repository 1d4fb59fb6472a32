SELECT store.store_name, category.category_name, sum(returns.returned_quantity) AS quantity
FROM returns
JOIN store ON returns.store_key = store.store_key
JOIN sales ON returns.order_number = sales.order_number AND returns.line_number = sales.line_number
JOIN product ON sales.product_key = product.product_key
JOIN subcategory ON product.subcategory_key = subcategory.subcategory_key
JOIN category ON subcategory.category_key = category.category_key
GROUP BY store.store_name, category.category_name
ORDER BY store.store_name, category.category_name;
